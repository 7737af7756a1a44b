#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "broker/plugin/digest_maker_t.h"
#include "broker/plugin/stored_hash_t.h"
#include "broker/plugin/text_map.h"

namespace broker::plugin {

struct control_message_t;

/// One API user, from the moment it was told until it is removed or has another password.
struct account_t {
    stored_hash_t hash;
    std::uint64_t life = 0;                 ///< never 0; another one after each such change
    std::optional<digest_t> good_password;  ///< of the password, once it was checked
};

/// The API users, as the host told them. Knows nobody before that.
class account_table_t {
 public:
    /// Hashes up to this many iterations are cheap enough to be checked at once: 30 µs.
    static constexpr std::uint32_t cheap_iterations = 64;

    /// Takes over what an "all" or "change" says. The names whose former account is gone, be it
    /// that the name or that the password has changed.
    std::vector<std::string> apply(const control_message_t& _message);

    account_t* find(std::string_view _name);
    bool is_told() const { return told; }
    std::size_t size() const { return accounts.size(); }

    /// As many iterations as some account has, so that an unknown name takes the time of a known
    /// one. The same for the same @p _seed while the accounts stay.
    std::uint32_t usual_iterations(std::uint64_t _seed) const;

 private:
    void put(const std::string& _name, const stored_hash_t& _hash,
             std::vector<std::string>* _ended);
    void remove(const std::string& _name, std::vector<std::string>* _ended);
    void count(std::uint32_t _iterations, int _change);

    text_map_t<account_t> accounts;
    std::map<std::uint32_t, int> expensive;  ///< iterations and how many accounts have them
    std::uint64_t expensive_accounts = 0;
    std::uint64_t last_life = 0;
    bool told = false;
};

}  // namespace broker::plugin
