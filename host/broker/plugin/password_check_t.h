#pragma once

#include <cstdint>
#include <string>

#include "broker/plugin/digest_maker_t.h"
#include "broker/plugin/password_key_t.h"
#include "broker/plugin/stored_hash_t.h"

namespace broker::plugin {

/// Who wants to sign in, from where. Texts are cut to a size that is fit for reports.
struct visitor_t {
    std::string user;
    std::string client;
    std::string address;
};

/// A password that has to be compared the slow way.
struct password_check_t {
    digest_t digest{};  ///< of name and password; says whether two of them are the same
    visitor_t visitor;
    password_key_t password;
    stored_hash_t hash;
    std::uint64_t life = 0;  ///< of the account; 0: there is none, and the verdict is no
};

/// What came of it.
struct password_verdict_t {
    digest_t digest{};
    visitor_t visitor;
    std::uint64_t life = 0;
    bool right = false;
};

}  // namespace broker::plugin
