#include "knx/text_coding.h"

#include <algorithm>

namespace knx {

namespace {

bool is_text_of(coding_t _coding, const QString& _text) {
    return std::all_of(_text.begin(), _text.end(), [_coding](QChar _c) {
        const char16_t c = _c.unicode();
        return (c >= 0x20 && c <= 0x7e) ||
               (_coding == coding_t::latin1_text && c >= 0xa0 && c <= 0xff);
    });
}

bool fits(const data_point_type_t& _type, const QString& _text) {
    return (_type.bytes() == 1 ? _text.size() == 1 : _text.size() <= _type.bytes()) &&
           is_text_of(_type.coding, _text);
}

}  // namespace

encoded_t encode_text(const data_point_type_t& _type, const QString& _text) {
    return fits(_type, _text) ? encoded_t{_text.toLatin1().leftJustified(_type.bytes(), '\0'), {}}
                              : encoded_t::refused(refusal_t::wrong_form);
}

std::optional<QString> decode_text(const data_point_type_t& _type, const QByteArray& _bytes) {
    // Devices leave what they had behind the zero that ends the text.
    const qsizetype end = _bytes.indexOf('\0');
    const QString text = QString::fromLatin1(end < 0 ? _bytes : _bytes.left(end));
    return fits(_type, text) ? std::optional(text) : std::nullopt;
}

}  // namespace knx
