#pragma once

#include <string_view>

namespace broker::plugin {

/// Whether an API user can be called that: 1 to 64 of [0-9a-zA-Z._-]. Such a name is one level of
/// a topic and holds no wildcard.
bool is_account_name(std::string_view _name);

}  // namespace broker::plugin
