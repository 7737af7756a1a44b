#include "bench/load/load_client_t.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include "bench/load/client_loop_t.h"

namespace bench {

namespace {

using namespace std::chrono_literals;

constexpr auto longest_answer = 20s;
constexpr auto pause = 10ms;
constexpr int refusals_from = 128;

load_client_t* client_of(void* _self) {
    return static_cast<load_client_t*>(_self);
}

}  // namespace

load_client_t::load_client_t(on_message_t _on_message) : on_message(std::move(_on_message)) {
    static const int ready = mosquitto_lib_init();
    (void)ready;
}

load_client_t::~load_client_t() {
    if (handle != nullptr) {
        mosquitto_disconnect(handle);
        mosquitto_destroy(handle);
    }
}

bool load_client_t::sign_in(const door_t& _door, std::chrono::seconds _limit) {
    const auto limit = std::chrono::steady_clock::now() + _limit;
    state_t reached = state_t::closed;
    while (reached == state_t::closed && std::chrono::steady_clock::now() < limit &&
           !client_loop_t::is_stopped()) {
        reached = try_to_sign_in(_door);
        if (reached == state_t::closed) {
            std::this_thread::sleep_for(pause);
        }
    }
    return reached == state_t::open;
}

load_client_t::state_t load_client_t::try_to_sign_in(const door_t& _door) {
    if (handle != nullptr) {
        mosquitto_destroy(handle);
    }
    handle = mosquitto_new(nullptr, true, this);
    mosquitto_int_option(handle, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(handle, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_int_option(handle, MOSQ_OPT_RECEIVE_MAXIMUM, 65535);
    mosquitto_int_option(handle, MOSQ_OPT_SEND_MAXIMUM, _door.in_flight);
    mosquitto_username_pw_set(handle, _door.user.c_str(), _door.password.c_str());
    set_callbacks();
    state = state_t::asked;
    if (mosquitto_connect_bind_v5(handle, _door.host.c_str(), _door.port, 60, nullptr, nullptr) !=
        MOSQ_ERR_SUCCESS) {
        return state = state_t::closed;
    }
    wait([this]() { return state != state_t::asked; });
    return state;
}

bool load_client_t::wait(const std::function<bool()>& _done) {
    client_loop_t loop;
    loop.add(this);
    return loop.run([&]() { return _done() || socket() < 0; }, longest_answer) && _done();
}

void load_client_t::set_callbacks() {
    mosquitto_connect_v5_callback_set(
        handle, [](mosquitto*, void* _self, int _reason, int, const mosquitto_property*) {
            client_of(_self)->state = _reason == 0 ? state_t::open : state_t::refused;
        });
    mosquitto_disconnect_v5_callback_set(
        handle, [](mosquitto*, void* _self, int, const mosquitto_property*) {
            client_of(_self)->state = state_t::closed;
        });
    mosquitto_subscribe_v5_callback_set(handle, [](mosquitto*, void* _self, int, int _count,
                                                   const int* _qos, const mosquitto_property*) {
        client_of(_self)->subscribed = _count == 1 && _qos[0] < refusals_from;
    });
    mosquitto_publish_v5_callback_set(
        handle, [](mosquitto*, void* _self, int, int, const mosquitto_property*) {
            ++client_of(_self)->delivered_count;
        });
    mosquitto_message_v5_callback_set(handle, [](mosquitto*, void* _self,
                                                 const mosquitto_message* _message,
                                                 const mosquitto_property*) {
        client_of(_self)->on_message(_message->topic, {static_cast<const char*>(_message->payload),
                                                       std::size_t(_message->payloadlen)});
    });
}

bool load_client_t::subscribe(const std::string& _filter, int _qos) {
    subscribed = false;
    return is_open() &&
           mosquitto_subscribe(handle, nullptr, _filter.c_str(), _qos) == MOSQ_ERR_SUCCESS &&
           wait([this]() { return subscribed; });
}

bool load_client_t::publish(const std::string& _topic, std::string_view _payload, int _qos,
                            bool _retain) {
    return mosquitto_publish(handle, nullptr, _topic.c_str(), int(_payload.size()), _payload.data(),
                             _qos, _retain) == MOSQ_ERR_SUCCESS;
}

int load_client_t::socket() const {
    return handle == nullptr ? -1 : mosquitto_socket(handle);
}

bool load_client_t::wants_write() const {
    return mosquitto_want_write(handle);
}

void load_client_t::read() {
    // As much as is there, with a limit so that others have their turn.
    for (int packet = 0; packet < 64; ++packet) {
        errno = 0;
        if (mosquitto_loop_read(handle, 1) != MOSQ_ERR_SUCCESS || errno == EAGAIN) {
            break;
        }
    }
}

void load_client_t::write() {
    mosquitto_loop_write(handle, 1);
}

void load_client_t::tend() {
    mosquitto_loop_misc(handle);
}

}  // namespace bench
