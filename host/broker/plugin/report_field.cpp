#include "broker/plugin/report_field.h"

namespace broker::plugin {

std::string report_field(std::string_view _text, std::size_t _longest) {
    constexpr std::string_view digits = "0123456789abcdef";
    if (_text.empty()) {
        return "-";
    }
    std::string field;
    for (const char letter : _text.substr(0, _longest)) {
        const auto byte = static_cast<unsigned char>(letter);
        if (byte > ' ' && byte < 0x7f && letter != '%' && _text != "-") {
            field.push_back(letter);
        } else {
            field.append(1, '%').append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        }
    }
    return field;
}

}  // namespace broker::plugin
