#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace broker::plugin {

class password_key_t;

/// A password as accounts have it: "$7$<iterations>$<salt>$<hash>", PBKDF2 with SHA-512, salt and
/// hash in base 64.
struct stored_hash_t {
    static constexpr std::uint32_t most_iterations = 9'999'999;

    std::uint32_t iterations = 0;
    std::string salt;  ///< 1 to 64 bytes
    std::array<unsigned char, 64> hash{};

    /// Nothing: the text has another form.
    static std::optional<stored_hash_t> parse(std::string_view _text);

    /// One that no password matches but that costs as much.
    static stored_hash_t decoy(std::uint32_t _iterations);

    /// Takes its time: about half a microsecond for each iteration. Any thread.
    bool matches(const password_key_t& _password) const;

    bool operator==(const stored_hash_t&) const = default;
};

}  // namespace broker::plugin
