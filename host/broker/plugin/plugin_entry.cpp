// The functions that the broker calls. Nothing is thrown into it: what fails is refused.
#include <malloc.h>
#include <mosquitto.h>
#include <mosquitto_broker.h>
#include <mosquitto_plugin.h>

#include <array>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "broker/plugin/gate_t.h"
#include "broker/plugin/mosquitto_port_t.h"

namespace {

using broker::plugin::gate_t;

/// Lives as long as the broker has the plugin loaded.
struct plugin_t {
    broker::plugin::mosquitto_port_t port;
    std::unique_ptr<gate_t> gate;
    mosquitto_plugin_id_t* identifier = nullptr;
};

template <class Function>
int guarded(int _otherwise, Function _function) noexcept {
    try {
        return _function();
    } catch (...) {
        return _otherwise;
    }
}

gate_t& gate_of(void* _plugin) {
    return *static_cast<plugin_t*>(_plugin)->gate;
}

std::string_view view_of(const char* _text) {
    return _text == nullptr ? std::string_view() : std::string_view(_text);
}

broker::plugin::moment_t now() {
    const auto since_start = std::chrono::steady_clock::now().time_since_epoch();
    return {std::chrono::duration_cast<std::chrono::milliseconds>(since_start), std::time(nullptr)};
}

int on_sign_in(int, void* _event, void* _plugin) {
    return guarded(MOSQ_ERR_UNKNOWN, [&]() {
        const auto& event = *static_cast<mosquitto_evt_basic_auth*>(_event);
        const auto entry = gate_of(_plugin).sign_in(
            {.client = event.client,
             .id = view_of(mosquitto_client_id(event.client)),
             .name = view_of(event.username),
             .password = view_of(event.password),
             .address = view_of(mosquitto_client_address(event.client)),
             .clean = mosquitto_client_clean_session(event.client),
             .websockets = mosquitto_client_protocol(event.client) == mp_websockets});
        switch (entry) {
            case gate_t::entry_t::open:
                return int(MOSQ_ERR_SUCCESS);
            case gate_t::entry_t::refused:
                return int(MOSQ_ERR_AUTH);
            case gate_t::entry_t::unanswered:
                break;
        }
        return int(MOSQ_ERR_UNKNOWN);
    });
}

/// Another way to sign in than by name and password: there is none.
int on_other_sign_in(int, void*, void*) {
    return MOSQ_ERR_AUTH;
}

int on_access(int, void* _event, void* _plugin) {
    return guarded(MOSQ_ERR_ACL_DENIED, [&]() {
        const auto& event = *static_cast<mosquitto_evt_acl_check*>(_event);
        gate_t::access_t access = gate_t::access_t::read;
        switch (event.access) {
            case MOSQ_ACL_READ:
                break;
            case MOSQ_ACL_WRITE:
                access = gate_t::access_t::write;
                break;
            case MOSQ_ACL_SUBSCRIBE:
                access = gate_t::access_t::subscribe;
                break;
            case MOSQ_ACL_UNSUBSCRIBE:
                access = gate_t::access_t::unsubscribe;
                break;
            default:
                return int(MOSQ_ERR_ACL_DENIED);
        }
        const bool may = gate_of(_plugin).may(event.client, access, view_of(event.topic),
                                              event.retain, event.payloadlen);
        return int(may ? MOSQ_ERR_SUCCESS : MOSQ_ERR_ACL_DENIED);
    });
}

int on_control(int, void* _event, void* _plugin) {
    return guarded(MOSQ_ERR_SUCCESS, [&]() {
        const auto& event = *static_cast<mosquitto_evt_control*>(_event);
        gate_of(_plugin).control(event.client,
                                 {static_cast<const char*>(event.payload), event.payloadlen});
        return int(MOSQ_ERR_SUCCESS);
    });
}

int on_departure(int, void* _event, void* _plugin) {
    return guarded(MOSQ_ERR_SUCCESS, [&]() {
        gate_of(_plugin).departed(static_cast<mosquitto_evt_disconnect*>(_event)->client);
        return int(MOSQ_ERR_SUCCESS);
    });
}

int on_reload(int, void*, void* _plugin) {
    gate_of(_plugin).reload();
    return MOSQ_ERR_SUCCESS;
}

int on_tick(int, void*, void* _plugin) {
    return guarded(MOSQ_ERR_SUCCESS, [&]() {
        gate_of(_plugin).tick();
        return int(MOSQ_ERR_SUCCESS);
    });
}

struct callback_t {
    int event;
    MOSQ_FUNC_generic_callback function;
    const char* topic;
};

constexpr std::array<callback_t, 8> callbacks{{
    {MOSQ_EVT_BASIC_AUTH, on_sign_in, nullptr},
    {MOSQ_EVT_EXT_AUTH_START, on_other_sign_in, nullptr},
    {MOSQ_EVT_EXT_AUTH_CONTINUE, on_other_sign_in, nullptr},
    {MOSQ_EVT_ACL_CHECK, on_access, nullptr},
    {MOSQ_EVT_CONTROL, on_control, broker::plugin::host_link_t::control_topic},
    {MOSQ_EVT_DISCONNECT, on_departure, nullptr},
    {MOSQ_EVT_RELOAD, on_reload, nullptr},
    {MOSQ_EVT_TICK, on_tick, nullptr},
}};

/// Empty, or why the options cannot be used.
std::string read_options(broker::plugin::gate_settings_t* _settings, const mosquitto_opt* _options,
                         int _count) {
    for (int i = 0; i < _count; ++i) {
        std::string error = _settings->set(view_of(_options[i].key), view_of(_options[i].value));
        if (!error.empty()) {
            return error;
        }
    }
    return _settings->check();
}

/// A large packet takes and frees its memory at once. Giving that back to the system and touching
/// it anew cost the broker more than all the rest, a third of its time while somebody sent packets
/// of 1 MB.
void keep_freed_memory() {
    constexpr int larger_than_any_packet = 8 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, larger_than_any_packet);
    mallopt(M_TRIM_THRESHOLD, 2 * larger_than_any_packet);
}

/// Empty, or why it is not ready.
std::string prepare(plugin_t* _plugin, const mosquitto_opt* _options, int _count) {
    broker::plugin::gate_settings_t settings;
    if (std::string error = read_options(&settings, _options, _count); !error.empty()) {
        return error;
    }
    _plugin->gate = std::make_unique<gate_t>(settings, &_plugin->port, now);
    for (const callback_t& callback : callbacks) {
        if (mosquitto_callback_register(_plugin->identifier, callback.event, callback.function,
                                        callback.topic, _plugin) != MOSQ_ERR_SUCCESS) {
            return "a callback could not be registered";
        }
    }
    return {};
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int mosquitto_plugin_version(int _count,
                                                                    const int* _versions) {
    for (int i = 0; i < _count; ++i) {
        if (_versions[i] == MOSQ_PLUGIN_VERSION) {
            return MOSQ_PLUGIN_VERSION;
        }
    }
    return -1;
}

__attribute__((visibility("default"))) int mosquitto_plugin_init(mosquitto_plugin_id_t* _identifier,
                                                                 void** _plugin,
                                                                 mosquitto_opt* _options,
                                                                 int _count) {
    return guarded(MOSQ_ERR_NOMEM, [&]() {
        auto made = std::make_unique<plugin_t>();
        made->identifier = _identifier;
        const std::string error = prepare(made.get(), _options, _count);
        if (!error.empty()) {
            mosquitto_log_printf(MOSQ_LOG_ERR, "The plugin cannot be used: %s.", error.c_str());
            return int(MOSQ_ERR_INVAL);
        }
        keep_freed_memory();
        *_plugin = made.release();
        return int(MOSQ_ERR_SUCCESS);
    });
}

__attribute__((visibility("default"))) int mosquitto_plugin_cleanup(void* _plugin, mosquitto_opt*,
                                                                    int) {
    auto* const plugin = static_cast<plugin_t*>(_plugin);
    if (plugin == nullptr) {
        return MOSQ_ERR_SUCCESS;
    }
    for (const callback_t& callback : callbacks) {
        mosquitto_callback_unregister(plugin->identifier, callback.event, callback.function,
                                      callback.topic);
    }
    delete plugin;
    return MOSQ_ERR_SUCCESS;
}

}  // extern "C"
