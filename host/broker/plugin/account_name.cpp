#include "broker/plugin/account_name.h"

namespace broker::plugin {

bool is_account_name(std::string_view _name) {
    constexpr std::string_view letters =
        "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ._-";
    return !_name.empty() && _name.size() <= 64 &&
           _name.find_first_not_of(letters) == std::string_view::npos;
}

}  // namespace broker::plugin
