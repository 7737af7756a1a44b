#include "broker/plugin/gate_settings_t.h"

#include <charconv>
#include <optional>

#include "broker/plugin/account_name.h"

namespace broker::plugin {

namespace {

std::optional<unsigned int> number(std::string_view _text, unsigned int _least,
                                   unsigned int _most) {
    unsigned int value = 0;
    const auto [end, error] = std::from_chars(_text.begin(), _text.end(), value);
    const bool good =
        error == std::errc() && end == _text.end() && value >= _least && value <= _most;
    return good ? std::optional(value) : std::nullopt;
}

/// Gives @p _target the number; false: it is none between these two.
template <class Target>
bool set_number(Target* _target, std::string_view _text, unsigned int _least, unsigned int _most) {
    const auto value = number(_text, _least, _most);
    if (value) {
        *_target = Target(*value);
    }
    return value.has_value();
}

}  // namespace

std::string gate_settings_t::set(std::string_view _key, std::string_view _value) {
    bool good = true;
    if (_key == "host_account") {
        host_account = _value;
    } else if (_key == "host_address") {
        host_address = _value;
    } else if (_key == "host_hash") {
        const auto hash = stored_hash_t::parse(_value);
        good = hash.has_value();
        host_password = hash.value_or(stored_hash_t());
    } else if (_key == "idle_seconds") {
        good = set_number(&idle, _value, 1, 1'000'000'000);
    } else if (_key == "sessions_of_user") {
        good = set_number(&sessions_of_user, _value, 1, 10'000);
    } else if (_key == "publishes_per_second") {
        good = set_number(&publishes_per_second, _value, 0, 1'000'000);
    } else if (_key == "bytes_per_second") {
        good = set_number(&bytes_per_second, _value, 0, 1'000'000'000);
    } else if (_key == "at_once_ms") {
        good = set_number(&at_once, _value, 0, 1'000);
    } else {
        return "plugin_opt_" + std::string(_key) + " is unknown";
    }
    return good ? std::string() : "plugin_opt_" + std::string(_key) + " has no useful value";
}

std::string gate_settings_t::check() const {
    if (host_account.empty() || is_account_name(host_account)) {
        return "plugin_opt_host_account is missing, or could be an API user's name";
    }
    if (host_address.empty()) {
        return "plugin_opt_host_address is missing";
    }
    return host_password.iterations == 0 ? "plugin_opt_host_hash is missing" : std::string();
}

}  // namespace broker::plugin
