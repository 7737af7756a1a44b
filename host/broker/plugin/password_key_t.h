#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace broker::plugin {

/// A password while it waits to be checked, of a bounded size: PBKDF2 itself takes the SHA-512 of
/// a password longer than 128 bytes instead of it, so this does. Wiped when it is gone.
class password_key_t {
 public:
    explicit password_key_t(std::string_view _password);
    ~password_key_t();
    password_key_t(const password_key_t&) = default;
    password_key_t& operator=(const password_key_t&) = default;

    const char* data() const { return bytes.data(); }
    std::size_t size() const { return used; }

 private:
    std::array<char, 128> bytes{};
    std::size_t used;
};

}  // namespace broker::plugin
