#include "broker/plugin/digest_maker_t.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <stdexcept>
#include <string>

namespace broker::plugin {

digest_maker_t::digest_maker_t() {
    if (RAND_bytes(key.data(), int(key.size())) != 1) {
        throw std::runtime_error("there are no random bytes");
    }
}

digest_maker_t::~digest_maker_t() {
    OPENSSL_cleanse(key.data(), key.size());
}

digest_t digest_maker_t::make(std::string_view _name, std::string_view _password) const {
    // A name holds no NUL, so that no two pairs make the same text.
    std::string text;
    text.reserve(_name.size() + 1 + _password.size());
    text.append(_name).append(1, '\0').append(_password);
    digest_t made{};
    unsigned int size = 0;
    const auto* const done =
        HMAC(EVP_sha256(), key.data(), int(key.size()),
             reinterpret_cast<const unsigned char*>(text.data()), text.size(), made.data(), &size);
    OPENSSL_cleanse(text.data(), text.size());
    if (done == nullptr || size != made.size()) {
        throw std::runtime_error("a digest could not be made");
    }
    return made;
}

bool digest_maker_t::equal(const digest_t& _one, const digest_t& _other) {
    return CRYPTO_memcmp(_one.data(), _other.data(), _one.size()) == 0;
}

}  // namespace broker::plugin
