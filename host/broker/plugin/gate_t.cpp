#include "broker/plugin/gate_t.h"

#include <utility>

#include "broker/plugin/account_name.h"
#include "broker/plugin/control_message_t.h"
#include "broker/plugin/report_field.h"
#include "broker/plugin/topic_judge.h"

namespace broker::plugin {

namespace {

constexpr std::size_t longest_id = 1'024;
/// Sessions without a connection.
constexpr std::size_t most_sessions = 10'000;
/// Sessions that the host has still to delete, in all and of one user: then nobody else comes in,
/// or that user does not.
constexpr std::size_t most_dismissed = 10'000;
constexpr std::size_t most_dismissed_of_user = 100;
constexpr std::size_t asked_at_once = 100;
constexpr auto ask_again = std::chrono::seconds(5);
constexpr auto look_for_age = std::chrono::seconds(1);
constexpr std::size_t longest_text = 256;

visitor_t visitor_of(const sign_in_t& _who) {
    return {std::string(_who.name.substr(0, longest_text)),
            std::string(_who.id.substr(0, longest_text)),
            std::string(_who.address.substr(0, longest_text))};
}

session_t session_of(const sign_in_t& _who, std::uint64_t _life) {
    session_t made;
    made.client = _who.client;
    made.id = _who.id;
    made.user = _who.name;
    made.address = _who.address;
    made.life = _life;
    return made;
}

}  // namespace

gate_t::gate_t(const gate_settings_t& _settings, broker_port_t* _port, clock_t _clock)
    : settings(_settings),
      port(_port),
      clock(std::move(_clock)),
      doorkeeper(_settings.at_once, &events),
      sessions({_settings.idle, _settings.sessions_of_user, most_sessions}),
      meter(_settings.publishes_per_second, _settings.bytes_per_second),
      link(_port) {}

gate_t::entry_t gate_t::sign_in(const sign_in_t& _who) {
    if (reloading && is_known(_who)) {
        return entry_t::open;
    }
    if (_who.name == settings.host_account) {
        return sign_in_host(_who);
    }
    if (!doorkeeper.accounts.is_told() || sessions.dismissed_count() >= most_dismissed ||
        sessions.dismissed_count(_who.name) >= most_dismissed_of_user ||
        meter.is_away(_who.name, clock().steady)) {
        return entry_t::unanswered;
    }
    if (!is_account_name(_who.name) || _who.password.data() == nullptr) {
        return refuse(event_kind_t::failed, _who, "no name or password");
    }
    switch (doorkeeper.judge(visitor_of(_who), _who.password, clock())) {
        case doorkeeper_t::verdict_t::later:
            return entry_t::unanswered;
        case doorkeeper_t::verdict_t::wrong:
            return entry_t::refused;
        case doorkeeper_t::verdict_t::right:
            break;
    }
    const account_t* const account = doorkeeper.accounts.find(_who.name);
    return account == nullptr ? entry_t::refused : admit(_who, *account);
}

gate_t::entry_t gate_t::sign_in_host(const sign_in_t& _who) {
    if (_who.address != settings.host_address) {
        return refuse(event_kind_t::failed, _who, "the host's account from elsewhere");
    }
    if (_who.password.data() == nullptr ||
        !settings.host_password.matches(password_key_t(_who.password))) {
        return refuse(event_kind_t::failed, _who, "password");
    }
    sessions.enter(session_of(_who, 0));
    return entry_t::open;
}

gate_t::entry_t gate_t::admit(const sign_in_t& _who, const account_t& _account) {
    if (_who.id.empty() || _who.id.size() > longest_id) {
        return refuse(event_kind_t::refused, _who, "the client identifier is too long");
    }
    if (session_t* const former = sessions.owner(_who.id)) {
        const bool same_user = former->user == _who.name;
        if (former->state == session_t::state_t::online && !same_user) {
            return refuse(event_kind_t::refused, _who, "another user has this client identifier");
        }
        if (!_who.clean && (!same_user || former->doomed || former->life != _account.life)) {
            // Nothing of it may be inherited.
            sessions.dismiss(former);
            return entry_t::unanswered;
        }
    }
    const session_t& session = sessions.enter(session_of(_who, _account.life));
    events.note(event_kind_t::signed_in, session.visitor(), {}, clock().wall);
    return entry_t::open;
}

gate_t::entry_t gate_t::refuse(event_kind_t _kind, const sign_in_t& _who, std::string_view _why) {
    events.note(_kind, visitor_of(_who), _why, clock().wall);
    return entry_t::refused;
}

bool gate_t::is_known(const sign_in_t& _who) {
    // A connection by WebSockets may be a new one whose object has the address of one that is
    // gone; not if that one is connected.
    const session_t* const session = sessions.find(_who.client);
    return session != nullptr && session->user == _who.name && session->id == _who.id &&
           (session->state == session_t::state_t::online || !_who.websockets);
}

bool gate_t::may(client_key_t _client, access_t _access, std::string_view _topic, bool _retain,
                 std::size_t _bytes) {
    const session_t* const session = sessions.find(_client);
    if (session == nullptr) {
        return false;
    }
    if (session->is_host() || _access == access_t::unsubscribe) {
        return true;
    }
    const account_t* const account = doorkeeper.accounts.find(session->user);
    const bool is_valid = account != nullptr && account->life == session->life;
    if (_access == access_t::read) {
        return is_valid && may_read(session->user, _topic, connection_topic);
    }
    const bool is_write = _access == access_t::write;
    if (is_write && !is_within_measure(*session, _topic, _bytes)) {
        return false;
    }
    if (is_valid && (is_write ? may_write(session->user, _topic, _retain)
                              : may_subscribe(session->user, _topic, connection_topic))) {
        return true;
    }
    events.note(is_write ? event_kind_t::write_refused : event_kind_t::subscribe_refused,
                session->visitor(), _topic, clock().wall);
    return false;
}

bool gate_t::is_within_measure(const session_t& _session, std::string_view _topic,
                               std::size_t _bytes) {
    const moment_t now = clock();
    const auto verdict = meter.take(_session.user, _bytes, now.steady);
    if (verdict == publish_meter_t::verdict_t::stopped_and_told) {
        events.note(event_kind_t::flooding, _session.visitor(), _topic, now.wall);
    } else if (verdict == publish_meter_t::verdict_t::sent_away) {
        flooders.insert(_session.client);
    }
    return verdict == publish_meter_t::verdict_t::passes;
}

void gate_t::control(client_key_t _client, std::string_view _text) {
    const session_t* const session = sessions.find(_client);
    if (session == nullptr || !session->is_host()) {
        return;
    }
    link.hear(session->id);
    control_message_t message = control_message_t::parse(_text);
    using kind_t = control_message_t::kind_t;
    if (message.refused.empty() && message.kind == kind_t::seen) {
        link.seen(message.number);
        return;
    }
    if (message.kind == kind_t::change && !doorkeeper.accounts.is_told()) {
        message.refused = "nothing was told that could change";
    }
    if (message.refused.empty()) {
        apply(&message);
    }
    link.answer(message);
}

void gate_t::apply(control_message_t* _message) {
    const bool is_all = _message->kind == control_message_t::kind_t::all;
    if (is_all || _message->connection_topic) {
        connection_topic = _message->connection_topic.value_or(std::string());
    }
    for (const std::string& name : doorkeeper.accounts.apply(*_message)) {
        sessions.doom(name);
        port->close_user(name);
    }
    for (const std::string& name : _message->withdrawn) {
        sessions.doom(name);
    }
}

void gate_t::departed(client_key_t _client) {
    session_t* const session = sessions.find(_client);
    if (session == nullptr) {
        return;
    }
    unsettled = true;
    const bool was_online = sessions.leave(session);
    if (session->is_host() && !session->outdated) {
        link.lose(session->id);
    } else if (was_online && !session->is_host()) {
        events.note(event_kind_t::departed, session->visitor(), {}, clock().wall);
    }
}

void gate_t::tick() {
    reloading = false;
    send_away();
    const moment_t now = clock();
    doorkeeper.settle(now);
    if (std::exchange(unsettled, false) || now.steady - aged >= look_for_age) {
        aged = now.steady;
        sessions.settle(now.steady,
                        [this](const std::string& _id) { return port->has_session(_id); });
    }
    if (link.is_free()) {
        report();
    }
}

void gate_t::send_away() {
    for (const client_key_t client : std::exchange(flooders, {})) {
        const session_t* const session = sessions.find(client);
        if (session != nullptr && session->state == session_t::state_t::online) {
            port->close_client(std::string(session->id));
        }
    }
}

void gate_t::report() {
    const auto now = clock().steady;
    if (now >= again) {
        again = now + ask_again;
        asked = 0;
    }
    const auto dismissed = sessions.dismissed(asked, asked_at_once);
    if (events.is_empty() && dismissed.empty()) {
        return;
    }
    std::string lines = events.take();
    for (const session_t* const session : dismissed) {
        lines += "delete " + report_field(session->id, longest_id) + '\n';
        asked = session->order;
    }
    link.report(lines);
}

}  // namespace broker::plugin
