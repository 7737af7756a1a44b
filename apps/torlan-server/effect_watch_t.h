#pragma once

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>

#include "control/asker_t.h"
#include "database/database_t.h"
#include "endpoint/drivers_turn_t.h"
#include "endpoint/mqtt_endpoint_t.h"
#include "store/change_mark_t.h"

namespace torlan {

/// Tells askers when what they have stored counts: it is in memory and announced, the broker has
/// confirmed its users, the drivers have had their turn, and what was published until then, with
/// what is taken back of withdrawn grants, is on the broker. Main thread.
class effect_watch_t : public QObject {
    Q_OBJECT

 public:
    /// Why a change does not count yet, a clause for people; empty: drivers and broker follow.
    using lag_t = std::function<QString(const database::store::change_mark_t& _mark)>;

    explicit effect_watch_t(QObject* _parent = nullptr);
    ~effect_watch_t() override;

    /// Takes a question {"mark": ..., "within_ms": N}, answered {"effective": true} or, when the
    /// time is over, {"effective": false, "reason": ...}. Before follow() the server is starting.
    void take(control::asker_t* _asker, const QJsonObject& _question);

    /// From now on; both and the endpoint outlive this object, or end_following().
    void follow(lag_t _lag, database::database_t* _database,
                comunication::mqtt_endpoint_t* _endpoint);
    void end_following();

 private:
    /// How far a change has come.
    enum class stage_t { lagging, with_drivers, with_broker };
    struct wait_t {
        QPointer<control::asker_t> asker;
        database::store::change_mark_t mark;
        QDeadlineTimer limit;
        stage_t stage = stage_t::lagging;
    };

    void look();
    void look_at(quint64 _number, wait_t* _wait);
    QString reason(const wait_t& _wait) const;
    void give_to_drivers(quint64 _number, wait_t* _wait);
    void give_to_broker(quint64 _number);
    void on_marked(quint64 _number, bool _complete);

    lag_t lag;
    QPointer<comunication::mqtt_endpoint_t> endpoint;
    QHash<quint64, wait_t> waits;  ///< by the number of their mark
    quint64 last_number;
    QElapsedTimer since_bulk;
    QTimer pace;  ///< between looks, while somebody waits
};

}  // namespace torlan
