#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "broker/plugin/digest_maker_t.h"

namespace broker::plugin {

/// Passwords that were found wrong a moment ago, so that whoever comes again with the same one is
/// answered at once. Of a fixed size: a new one may take the place of an old one, which is checked
/// again then.
class wrong_passwords_t {
 public:
    static constexpr std::chrono::seconds kept{60};

    /// @p _life: of the account that it was compared with.
    void add(const digest_t& _digest, std::uint64_t _life, std::chrono::milliseconds _now);
    bool contains(const digest_t& _digest, std::uint64_t _life,
                  std::chrono::milliseconds _now) const;

 private:
    struct entry_t {
        digest_t digest{};
        std::uint64_t life = 0;
        std::chrono::milliseconds until{-1};
    };

    static std::size_t place_of(const digest_t& _digest);

    std::vector<entry_t> entries = std::vector<entry_t>(2'048);
};

}  // namespace broker::plugin
