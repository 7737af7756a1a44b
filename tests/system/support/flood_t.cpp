#include "system/support/flood_t.h"

#include <QDeadlineTimer>
#include <memory>

#include "kit/password_of.h"
#include "kit/raw_mqtt_t.h"

namespace support {

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
    std::unique_ptr<kit::raw_mqtt_t> client;
    int code = kit::raw_mqtt_t::closed;
    // Who signs in for the first time may be asked to come again.
    const QDeadlineTimer deadline(10'000);
    while (code == kit::raw_mqtt_t::closed && !deadline.hasExpired()) {
        client =
            std::make_unique<kit::raw_mqtt_t>(kit::raw_mqtt_t::way_t::tcp, QString::number(_port));
        code = client->connect(as);
    }
    if (code != 0 ||
        (_plan.subscribes && client->subscribe("local/api/v1/" + as.name + "/#", 0) > 2)) {
        return;
    }
    while (!ends && client->is_open()) {
        client->publish(_plan.topic, _plan.payload, 0);
        if (++count == 50) {
            state = state_t::running;
            state.notify_all();
        }
    }
}

}  // namespace support
