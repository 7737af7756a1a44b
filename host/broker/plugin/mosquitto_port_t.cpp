#include "broker/plugin/mosquitto_port_t.h"

#include <mosquitto.h>
#include <mosquitto_broker.h>

#include <cstring>

namespace broker::plugin {

void mosquitto_port_t::close_user(const std::string& _user) {
    // Without the last will: it would be sent in the name of somebody who may not any more.
    mosquitto_kick_client_by_username(_user.c_str(), false);
}

void mosquitto_port_t::close_client(const std::string& _id) {
    mosquitto_kick_client_by_clientid(_id.c_str(), false);
}

bool mosquitto_port_t::has_session(const std::string& _id) {
    // The only call that tells. With "true" it changes nothing for a session without a connection
    // but subscriptions that are not permitted; with "false" versions 2.0.11 to 2.0.21 crash.
    return mosquitto_kick_client_by_clientid(_id.c_str(), true) == MOSQ_ERR_SUCCESS;
}

void mosquitto_port_t::send(const std::string& _id, const std::string& _topic,
                            const std::string& _text) {
    // The broker frees it by its own means, which count: not the copying call, which does not.
    void* const payload = mosquitto_malloc(_text.size() + 1);
    if (payload == nullptr) {
        return;
    }
    std::memcpy(payload, _text.data(), _text.size());
    if (mosquitto_broker_publish(_id.c_str(), _topic.c_str(), int(_text.size()), payload, 1, false,
                                 nullptr) != MOSQ_ERR_SUCCESS) {
        mosquitto_free(payload);
    }
}

}  // namespace broker::plugin
