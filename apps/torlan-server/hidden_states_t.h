#pragma once

#include <QObject>
#include <set>

#include "comunication/protoserver_t.h"
#include "database/database_t.h"
#include "endpoint/drivers_turn_t.h"
#include "live/portions_t.h"
#include "live/shown_state_t.h"

namespace torlan {

/// Takes back what lies retained on the broker of states that a user may read no longer. A driver
/// does so, too, but not while its own debounce of such changes runs, up to 10 s after each.
///
/// Behind the driver: what it has queued for that user by then is published first. Main thread;
/// database and endpoint outlive it.
class hidden_states_t : public QObject {
    Q_OBJECT

 public:
    hidden_states_t(const database::database_t* _database, comunication::protoserver_t* _endpoint,
                    QObject* _parent = nullptr);
    ~hidden_states_t() override;

    /// What may be read again by then stays.
    void take(const QList<database::live::shown_state_t>& _states);

    /// Whose portions have to be answered, so that deletions are paced.
    database::live::portions_t* portions() { return &deleted; }

 private:
    void take_back();
    void take_back(const QString& _name);

    const database::database_t* const database;
    comunication::protoserver_t* const endpoint;
    comunication::drivers_turn_t turn;
    database::live::portions_t deleted;
    std::set<database::live::shown_state_t> waiting;  ///< for a turn of the drivers
};

}  // namespace torlan
