#pragma once

#include <array>
#include <string_view>

namespace broker::plugin {

using digest_t = std::array<unsigned char, 32>;

/// Fast digests of a name with a password, by which a password that was checked once is known
/// again. The key is drawn anew for each object and leaves this process never, so that digests
/// are worth nothing outside of it.
class digest_maker_t {
 public:
    /// Throws std::runtime_error when the system gives no random bytes.
    digest_maker_t();
    ~digest_maker_t();
    digest_maker_t(const digest_maker_t&) = delete;
    digest_maker_t& operator=(const digest_maker_t&) = delete;

    digest_t make(std::string_view _name, std::string_view _password) const;

    /// Takes the same time for all.
    static bool equal(const digest_t& _one, const digest_t& _other);

 private:
    std::array<unsigned char, 32> key{};
};

}  // namespace broker::plugin
