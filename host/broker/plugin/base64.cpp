#include "broker/plugin/base64.h"

#include <array>
#include <cstdint>

namespace broker::plugin {

namespace {

constexpr std::string_view letters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<signed char, 256> make_values() {
    std::array<signed char, 256> made{};
    made.fill(-1);
    for (std::size_t i = 0; i < letters.size(); ++i) {
        made[static_cast<unsigned char>(letters[i])] = static_cast<signed char>(i);
    }
    return made;
}

}  // namespace

std::optional<std::string> from_base64(std::string_view _text) {
    static constexpr std::array<signed char, 256> values = make_values();
    if (_text.size() % 4 != 0) {
        return {};
    }
    const std::size_t padding = _text.ends_with("==") ? 2 : _text.ends_with("=") ? 1 : 0;
    _text.remove_suffix(padding);
    std::string bytes;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char letter : _text) {
        const int value = values[static_cast<unsigned char>(letter)];
        if (value < 0) {
            return {};
        }
        bits = (bits << 6 | std::uint32_t(value)) & 0xffff;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<char>(bits >> count & 0xff));
        }
    }
    return bytes;
}

}  // namespace broker::plugin
