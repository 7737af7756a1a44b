#include "broker/plugin/password_key_t.h"

#include <openssl/crypto.h>
#include <openssl/sha.h>

#include <algorithm>

namespace broker::plugin {

password_key_t::password_key_t(std::string_view _password) : used(_password.size()) {
    if (used > bytes.size()) {
        used = SHA512_DIGEST_LENGTH;
        SHA512(reinterpret_cast<const unsigned char*>(_password.data()), _password.size(),
               reinterpret_cast<unsigned char*>(bytes.data()));
    } else {
        std::copy(_password.begin(), _password.end(), bytes.begin());
    }
}

password_key_t::~password_key_t() {
    OPENSSL_cleanse(bytes.data(), bytes.size());
}

}  // namespace broker::plugin
