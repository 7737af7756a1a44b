#pragma once

#include <QObject>
#include <QPointer>
#include <deque>

#include "endpoint/drivers_turn_t.h"
#include "live/portions_t.h"

namespace comunication {
class mqtt_endpoint_t;
}

namespace torlan {

/// Paces portions by what drivers make of them: behind a turn through their thread a mark goes to
/// the endpoint, and comes back when what was published before it is on the broker. Main thread;
/// the endpoint outlives it.
class drivers_pace_t : public QObject {
    Q_OBJECT

 public:
    explicit drivers_pace_t(comunication::mqtt_endpoint_t* _endpoint, QObject* _parent = nullptr);
    ~drivers_pace_t() override;

    /// From now on.
    void set_pace_of(database::live::portions_t* _portions);

 private:
    void set_mark();
    void on_marked(quint64 _mark);

    comunication::mqtt_endpoint_t* const endpoint;
    comunication::drivers_turn_t turn;
    std::deque<QPointer<database::live::portions_t>> under_way;  ///< whose, the oldest first
    // Other parts number their marks from far above on.
    quint64 last_set = 0;
    quint64 last_back = 0;
};

}  // namespace torlan
