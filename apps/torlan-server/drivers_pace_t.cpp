#include "drivers_pace_t.h"

#include "endpoint/mqtt_endpoint_t.h"

namespace torlan {

using comunication::mqtt_endpoint_t;
using database::live::portions_t;

drivers_pace_t::drivers_pace_t(mqtt_endpoint_t* _endpoint, QObject* _parent)
    : QObject(_parent), endpoint(_endpoint), turn(this) {
    connect(&turn, &comunication::drivers_turn_t::over, this, &drivers_pace_t::set_mark);
    connect(_endpoint, &mqtt_endpoint_t::marked, this, &drivers_pace_t::on_marked,
            Qt::QueuedConnection);
}

drivers_pace_t::~drivers_pace_t() = default;

void drivers_pace_t::set_pace_of(portions_t* _portions) {
    connect(_portions, &portions_t::announced, this, [this, _portions]() {
        under_way.emplace_back(_portions);
        turn.begin();
    });
}

void drivers_pace_t::set_mark() {
    QMetaObject::invokeMethod(
        endpoint, [to = endpoint, mark = ++last_set]() { to->mark(mark); }, Qt::QueuedConnection);
}

void drivers_pace_t::on_marked(quint64 _mark) {
    // What was lost with the connection is announced again by whoever hears of a new one.
    if (_mark != last_back + 1 || under_way.empty()) {
        return;
    }
    last_back = _mark;
    const QPointer<portions_t> oldest = under_way.front();
    under_way.pop_front();
    if (oldest) {
        oldest->taken();
    }
}

}  // namespace torlan
