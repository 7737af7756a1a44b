#include "broker/plugin/wrong_passwords_t.h"

namespace broker::plugin {

void wrong_passwords_t::add(const digest_t& _digest, std::uint64_t _life,
                            std::chrono::milliseconds _now) {
    entries[place_of(_digest)] = {_digest, _life, _now + kept};
}

bool wrong_passwords_t::contains(const digest_t& _digest, std::uint64_t _life,
                                 std::chrono::milliseconds _now) const {
    const entry_t& entry = entries[place_of(_digest)];
    return entry.life == _life && _now < entry.until &&
           digest_maker_t::equal(entry.digest, _digest);
}

std::size_t wrong_passwords_t::place_of(const digest_t& _digest) {
    return (std::size_t(_digest[0]) << 8 | _digest[1]) % 2'048;
}

}  // namespace broker::plugin
