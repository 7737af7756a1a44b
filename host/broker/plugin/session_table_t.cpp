#include "broker/plugin/session_table_t.h"

namespace broker::plugin {

using state_t = session_t::state_t;

session_t& session_table_t::enter(session_t _session) {
    // An object at the same address means that the former one has gone.
    erase(_session.client);
    if (session_t* const former = owner(_session.id)) {
        outdate(former);
    }
    auto made = std::make_unique<session_t>(std::move(_session));
    session_t* const session = made.get();
    by_client.emplace(session->client, std::move(made));
    by_id[session->id] = session;
    by_user[session->user].insert(session);
    return *session;
}

session_t* session_table_t::find(client_key_t _client) {
    const auto found = by_client.find(_client);
    return found == by_client.end() ? nullptr : found->second.get();
}

session_t* session_table_t::owner(std::string_view _id) {
    const auto found = by_id.find(_id);
    return found == by_id.end() ? nullptr : found->second;
}

bool session_table_t::leave(session_t* _session) {
    unsettled.push_back(_session->client);
    const bool was_online = _session->state == state_t::online;
    if (was_online) {
        _session->state = state_t::left;
    }
    return was_online;
}

void session_table_t::doom(std::string_view _user) {
    const auto found = by_user.find(_user);
    if (found == by_user.end()) {
        return;
    }
    for (session_t* const session : found->second) {
        session->doomed = true;
        if (session->state == state_t::offline) {
            dismiss(session);
        }
    }
}

void session_table_t::dismiss(session_t* _session) {
    if (leaving.count(_session->order) != 0) {
        return;
    }
    stop_waiting(_session);
    _session->doomed = true;
    _session->order = ++last_order;
    leaving.emplace(_session->order, _session);
    ++leaving_of_user[_session->user];
}

void session_table_t::settle(time_t _now,
                             const std::function<bool(const std::string&)>& _has_session) {
    for (const client_key_t client : std::exchange(unsettled, {})) {
        session_t* const session = find(client);
        if (session == nullptr || session->state == state_t::online) {
            continue;
        }
        if (session->outdated || !_has_session(session->id)) {
            erase(client);
        } else if (session->doomed) {
            session->state = state_t::offline;
            dismiss(session);
        } else if (session->state == state_t::left) {
            wait_offline(session, _now);
            shorten(&waiting_of_user[session->user], limits.of_user, _has_session);
            shorten(&waiting, limits.of_all, _has_session);
        }
    }
    while (!since.empty() && _now - since.begin()->second >= limits.idle) {
        dismiss(waiting.begin()->second);
    }
}

std::vector<const session_t*> session_table_t::dismissed(std::uint64_t _order,
                                                         std::size_t _count) const {
    std::vector<const session_t*> found;
    for (auto each = leaving.upper_bound(_order); each != leaving.end() && found.size() < _count;
         ++each) {
        found.push_back(each->second);
    }
    return found;
}

std::size_t session_table_t::dismissed_count(std::string_view _user) const {
    const auto counted = leaving_of_user.find(_user);
    return counted == leaving_of_user.end() ? 0 : counted->second;
}

void session_table_t::wait_offline(session_t* _session, time_t _now) {
    _session->state = state_t::offline;
    _session->order = ++last_order;
    waiting.emplace(_session->order, _session);
    since.emplace(_session->order, _now);
    waiting_of_user[_session->user].emplace(_session->order, _session);
}

void session_table_t::stop_waiting(session_t* _session) {
    waiting.erase(_session->order);
    since.erase(_session->order);
    if (leaving.erase(_session->order) != 0) {
        const auto counted = leaving_of_user.find(_session->user);
        if (--counted->second == 0) {
            leaving_of_user.erase(counted);
        }
    }
    const auto found = waiting_of_user.find(_session->user);
    if (found != waiting_of_user.end()) {
        found->second.erase(_session->order);
    }
    _session->order = 0;
}

void session_table_t::outdate(session_t* _session) {
    stop_waiting(_session);
    by_id.erase(_session->id);
    _session->outdated = true;
    // One that is connected leaves in a moment. Until then its last will is judged by what is here.
    if (_session->state != state_t::online) {
        unsettled.push_back(_session->client);
    }
}

void session_table_t::erase(client_key_t _client) {
    const auto found = by_client.find(_client);
    if (found == by_client.end()) {
        return;
    }
    session_t* const session = found->second.get();
    stop_waiting(session);
    if (owner(session->id) == session) {
        by_id.erase(session->id);
    }
    const auto others = by_user.find(session->user);
    others->second.erase(session);
    if (others->second.empty()) {
        by_user.erase(others);
        waiting_of_user.erase(session->user);
    }
    by_client.erase(found);
}

void session_table_t::shorten(order_map_t* _waiting, std::size_t _most,
                              const std::function<bool(const std::string&)>& _has_session) {
    while (_waiting->size() > _most) {
        session_t* const oldest = _waiting->begin()->second;
        // The broker does not tell when one has ended by itself.
        if (_has_session(oldest->id)) {
            dismiss(oldest);
        } else {
            erase(oldest->client);
        }
    }
}

}  // namespace broker::plugin
