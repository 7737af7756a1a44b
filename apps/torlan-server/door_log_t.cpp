#include "door_log_t.h"

#include <utility>

#include "accounts/event_text.h"
#include "logs/log_line.h"

namespace torlan {

using accounts::broker_event_t;

namespace {

constexpr const char* source = "apps/torlan-server/door_log_t";

void write(const broker_event_t& _event) {
    utility::log_line(accounts::event_text(_event), accounts::is_refusal(_event) ? 3 : 5, "write",
                      source, __LINE__);
}

}  // namespace

door_log_t::door_log_t(QObject* _parent) : QObject(_parent), minute(this) {
    minute.setInterval(std::chrono::minutes(1));
    minute.setSingleShot(true);
    connect(&minute, &QTimer::timeout, this, &door_log_t::settle);
}

door_log_t::~door_log_t() = default;

void door_log_t::tell(const broker_event_t& _event) {
    if (!minute.isActive()) {
        minute.start();
    }
    const QString who =
        QStringList{_event.kind, _event.user, _event.client, _event.address}.join(QChar(0));
    const auto known = repeated.find(who);
    if (known != repeated.end()) {
        known->count += _event.count;
        known->detail = _event.detail;
    } else if (repeated.size() < most_a_minute) {
        write(_event);
        broker_event_t rest = _event;
        rest.count = 0;
        repeated.insert(who, rest);
    } else {
        hidden += _event.count;
    }
}

void door_log_t::tell_lost(qint64 _count) {
    hidden += _count;
    if (!minute.isActive()) {
        minute.start();
    }
}

void door_log_t::settle() {
    for (const broker_event_t& event : std::exchange(repeated, {})) {
        if (event.count > 0) {
            write(event);
        }
    }
    if (const qint64 count = std::exchange(hidden, 0); count > 0) {
        utility::log_line(QStringLiteral("%1 more happened at the broker's door").arg(count), 3,
                          "settle", source, __LINE__);
    }
}

}  // namespace torlan
