#pragma once

namespace broker::plugin {

/// What is reported. The words are read by the host.
enum class event_kind_t {
    signed_in,
    departed,
    failed,     ///< no such user, wrong password, not even a form of a name
    unchecked,  ///< the password was not looked at, there were too many
    refused,    ///< the password was right, but not the rest
    write_refused,
    subscribe_refused,
    flooding,  ///< publishes more than one user may
};

constexpr const char* word_of(event_kind_t _kind) {
    switch (_kind) {
        case event_kind_t::signed_in:
            return "signed-in";
        case event_kind_t::departed:
            return "departed";
        case event_kind_t::failed:
            return "failed";
        case event_kind_t::unchecked:
            return "unchecked";
        case event_kind_t::refused:
            return "refused";
        case event_kind_t::write_refused:
            return "write-refused";
        case event_kind_t::subscribe_refused:
            return "subscribe-refused";
        case event_kind_t::flooding:
            return "flooding";
    }
    return "";
}

/// Whether somebody without an account can bring it about.
constexpr bool is_of_strangers(event_kind_t _kind) {
    return _kind == event_kind_t::failed || _kind == event_kind_t::unchecked;
}

}  // namespace broker::plugin
