#include "broker/plugin/stored_hash_t.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <charconv>

#include "broker/plugin/base64.h"
#include "broker/plugin/password_key_t.h"

namespace broker::plugin {

namespace {

/// The text before the next '$', which is taken off too.
std::string_view take_field(std::string_view* _text) {
    const auto end = _text->find('$');
    const std::string_view field = _text->substr(0, end);
    _text->remove_prefix(end == std::string_view::npos ? _text->size() : end + 1);
    return field;
}

std::optional<std::uint32_t> number(std::string_view _text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(_text.begin(), _text.end(), value);
    const bool good = error == std::errc() && end == _text.end() && _text.front() != '0' &&
                      value <= stored_hash_t::most_iterations;
    return good ? std::optional(value) : std::nullopt;
}

}  // namespace

std::optional<stored_hash_t> stored_hash_t::parse(std::string_view _text) {
    if (!_text.starts_with("$7$") || std::count(_text.begin(), _text.end(), '$') != 4) {
        return {};
    }
    _text.remove_prefix(3);
    const auto rounds = number(take_field(&_text));
    const auto salt = from_base64(take_field(&_text));
    const auto bytes = from_base64(_text);
    stored_hash_t made;
    if (!rounds || !salt || salt->empty() || salt->size() > 64 || !bytes ||
        bytes->size() != made.hash.size()) {
        return {};
    }
    made.iterations = *rounds;
    made.salt = *salt;
    std::copy(bytes->begin(), bytes->end(), made.hash.begin());
    return made;
}

stored_hash_t stored_hash_t::decoy(std::uint32_t _iterations) {
    stored_hash_t made;
    made.iterations = _iterations;
    made.salt.assign(12, 'x');
    RAND_bytes(made.hash.data(), int(made.hash.size()));
    return made;
}

bool stored_hash_t::matches(const password_key_t& _password) const {
    std::array<unsigned char, 64> found{};
    const int done =
        PKCS5_PBKDF2_HMAC(_password.data(), int(_password.size()),
                          reinterpret_cast<const unsigned char*>(salt.data()), int(salt.size()),
                          int(iterations), EVP_sha512(), int(found.size()), found.data());
    return done == 1 && CRYPTO_memcmp(found.data(), hash.data(), hash.size()) == 0;
}

}  // namespace broker::plugin
