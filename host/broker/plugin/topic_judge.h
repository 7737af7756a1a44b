#pragma once

#include <string_view>

namespace broker::plugin {

/// What an API user may do with a topic. Pure functions; names are as of is_account_name(), topics
/// and filters well-formed: the broker has looked at them first.

/// A request of the user's own, not retained. Holds for last wills too.
bool may_write(std::string_view _user, std::string_view _topic, bool _retain);

/// The user's own tree, and the connection topic unless that is empty.
bool may_read(std::string_view _user, std::string_view _topic, std::string_view _connection_topic);

/// A filter that matches nothing else than what may_read() allows. In "$share/GROUP/FILTER" the
/// user's own tree only: everybody may read the connection topic, and a stranger in one's group
/// would take messages away.
bool may_subscribe(std::string_view _user, std::string_view _filter,
                   std::string_view _connection_topic);

}  // namespace broker::plugin
