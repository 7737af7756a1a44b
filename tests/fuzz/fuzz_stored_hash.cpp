#include <string_view>

#include "broker/plugin/base64.h"
#include "broker/plugin/password_key_t.h"
#include "broker/plugin/stored_hash_t.h"
#include "fuzz/fuzz_input.h"

using namespace broker::plugin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const std::string_view text(reinterpret_cast<const char*>(_data), _size);
    const auto bytes = from_base64(text);
    FUZZ_EXPECT(!bytes || bytes->size() <= text.size() / 4 * 3);
    const auto hash = stored_hash_t::parse(text);
    if (!hash) {
        return 0;
    }
    FUZZ_EXPECT(hash->iterations > 0 && hash->iterations <= stored_hash_t::most_iterations);
    FUZZ_EXPECT(!hash->salt.empty() && hash->salt.size() <= 64);
    if (hash->iterations <= 10) {
        hash->matches(password_key_t(text));
    }
    return 0;
}
