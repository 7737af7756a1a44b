#include "live/write_gate_t.h"

#include "installation/item_limits.h"

namespace database::live {

using installation::item_limits_t;
using persistent::ps_requests_t;

write_gate_t::write_gate_t(const database_t* _database, QObject* _parent) : QObject(_parent) {
    // A request only asks: it comes from inside a driver's call.
    connect(_database->getPersistent()->getRequests(), &ps_requests_t::itemValueRequested, this,
            &write_gate_t::judge, Qt::QueuedConnection);
}

write_gate_t::~write_gate_t() = default;

void write_gate_t::set_limits(const QString& _id, const item_limits_t& _limits) {
    if (_limits == item_limits_t()) {
        forget(_id);
    } else {
        limits.insert(_id, _limits);
    }
}

QString write_gate_t::refusal(const QString& _id, const QString& _value) const {
    return installation::refusal(limits.value(_id), _value);
}

void write_gate_t::judge(const QString& _id, const QString& _value) {
    const QString reason = refusal(_id, _value);
    if (reason.isEmpty()) {
        Q_EMIT item_asked(_id, _value);
    } else {
        Q_EMIT item_refused(_id, _value, reason);
    }
}

}  // namespace database::live
