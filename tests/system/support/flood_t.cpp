#include "system/support/flood_t.h"

#include <QDeadlineTimer>
#include <memory>

#include "kit/password_of.h"

namespace support {

namespace {
constexpr quint64 enough = 10;
}  // namespace

flood_t::flood_t(quint16 _port, const plan_t& _plan)
    : thread([this, _port, _plan]() {
          run(_port, _plan);
          state = state_t::ended;
          state.notify_all();
      }) {}

flood_t::~flood_t() {
    ends = true;
    thread.join();
}

bool flood_t::wait_until_running() {
    state.wait(state_t::starting);
    return state == state_t::running;
}

void flood_t::run(quint16 _port, const plan_t& _plan) {
    kit::raw_connect_t as;
    as.name = _plan.user.toUtf8();
    as.password = kit::password_of(_plan.user).toUtf8();
    as.id = "flood-" + as.name;  // another user's is refused while its owner is there
    while (!ends && flood(_port, _plan, as)) {
    }
}

bool flood_t::flood(quint16 _port, const plan_t& _plan, const kit::raw_connect_t& _as) {
    std::unique_ptr<kit::raw_mqtt_t> client;
    int code = kit::raw_mqtt_t::closed;
    // Who signs in for the first time, or was sent away, is asked to come again.
    const QDeadlineTimer deadline(10'000);
    while (code == kit::raw_mqtt_t::closed && !deadline.hasExpired() && !ends) {
        client =
            std::make_unique<kit::raw_mqtt_t>(kit::raw_mqtt_t::way_t::tcp, QString::number(_port));
        code = client->connect(_as);
    }
    if (code != 0 ||
        (_plan.subscribes && client->subscribe("local/api/v1/" + _as.name + "/#", 0) > 2)) {
        return false;
    }
    while (!ends && client->is_open()) {
        client->publish(_plan.topic, _plan.payload, 0);
        if (++count == enough) {
            state = state_t::running;
            state.notify_all();
        }
    }
    return true;
}

}  // namespace support
