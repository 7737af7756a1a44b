#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "broker/plugin/session_t.h"
#include "broker/plugin/text_map.h"

namespace broker::plugin {

/// Who is there and which sessions the broker keeps, as far as its events tell: it does not say
/// when a session has ended. Which sessions have to be deleted, because they are doomed, too many
/// or too old; the host does that, by connecting with their identifier.
class session_table_t {
 public:
    using time_t = std::chrono::milliseconds;

    struct limits_t {
        std::chrono::seconds idle;  ///< how long one is kept without a connection
        std::size_t of_user;        ///< how many of one user, without a connection
        std::size_t of_all;
    };

    explicit session_table_t(const limits_t& _limits) : limits(_limits) {}

    /// A client may come in. Whoever had its identifier is outdated.
    session_t& enter(session_t _session);

    /// The one of this object of the broker; null: none has signed in.
    session_t* find(client_key_t _client);
    /// The one with this identifier that is not outdated.
    session_t* owner(std::string_view _id);

    /// Its connection has ended; false: it had none.
    bool leave(session_t* _session);

    /// Nothing that is queued for the user may be delivered: its sessions without a connection are
    /// to be deleted now, those with one when they leave.
    void doom(std::string_view _user);
    /// To be deleted now, connected or not.
    void dismiss(session_t* _session);

    /// Judges those who have left. @p _has_session: whether the broker keeps the session with an
    /// identifier that no connected client has.
    void settle(time_t _now, const std::function<bool(const std::string&)>& _has_session);

    /// Those to be deleted, in a stable order, at most @p _count of them after @p _order.
    std::vector<const session_t*> dismissed(std::uint64_t _order, std::size_t _count) const;
    std::size_t dismissed_count() const { return leaving.size(); }
    std::size_t dismissed_count(std::string_view _user) const;
    std::size_t size() const { return by_client.size(); }

 private:
    using order_map_t = std::map<std::uint64_t, session_t*>;

    void wait_offline(session_t* _session, time_t _now);
    void stop_waiting(session_t* _session);
    void outdate(session_t* _session);
    void erase(client_key_t _client);
    void shorten(order_map_t* _waiting, std::size_t _most,
                 const std::function<bool(const std::string&)>& _has_session);

    const limits_t limits;
    std::unordered_map<client_key_t, std::unique_ptr<session_t>> by_client;
    text_map_t<session_t*> by_id;
    text_map_t<std::unordered_set<session_t*>> by_user;
    text_map_t<order_map_t> waiting_of_user;  ///< offline, the oldest first
    order_map_t waiting;
    std::map<std::uint64_t, time_t> since;  ///< of waiting
    order_map_t leaving;                    ///< to be deleted
    text_map_t<std::size_t> leaving_of_user;
    std::vector<client_key_t> unsettled;
    std::uint64_t last_order = 0;
};

}  // namespace broker::plugin
