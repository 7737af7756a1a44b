#include "knx/float_coding.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>

#include "knx/number_coding.h"

namespace knx {

namespace {

constexpr quint16 no_value = 0x7fff;
constexpr int highest_exponent = 15;
constexpr int kept_decimals = 9;
constexpr qint64 kept_unit = 1'000'000'000;

quint16 packed(qint64 _mantissa, int _exponent) {
    return quint16((_mantissa < 0 ? 0x8000 : 0) | (_exponent << 11) | (_mantissa & 0x7ff));
}

/// With the smallest exponent that holds it; the highest number of all would mean "no value".
std::optional<quint16> packed(const decimal_t& _value) {
    const auto hundredths = _value.rounded(2 + kept_decimals);
    for (int exponent = 0; hundredths && exponent <= highest_exponent; ++exponent) {
        const qint64 step = kept_unit << exponent;
        const qint64 half = *hundredths < 0 ? -step / 2 : step / 2;
        const qint64 mantissa = (*hundredths + half) / step;
        if (mantissa >= -2048 && mantissa <= 2047) {
            const quint16 word = packed(mantissa, exponent);
            return word == no_value ? packed(mantissa - 1, exponent) : word;
        }
    }
    return std::nullopt;
}

qint64 hundredths_of(quint16 _word) {
    const qint64 mantissa = (_word & 0x7ff) - ((_word & 0x8000) != 0 ? 2048 : 0);
    return mantissa * (qint64(1) << ((_word >> 11) & highest_exponent));
}

}  // namespace

encoded_t encode_float16(const data_point_type_t& _type, const QString& _text) {
    const auto number = decimal_t::from_text(_text);
    if (!number) {
        return encoded_t::refused(refusal_t::no_number);
    }
    const auto word = in_range(_type, *number) ? packed(*number) : std::nullopt;
    return word ? encoded_t{wire_bytes(_type, *word), {}}
                : encoded_t::refused(refusal_t::out_of_range);
}

std::optional<QString> decode_float16(const data_point_type_t& _type, const QByteArray& _bytes) {
    const auto word = quint16(wire_number(_bytes));
    if (word == no_value) {
        return std::nullopt;
    }
    const qint64 hundredths = hundredths_of(word);
    // One number can be written in several ways.
    const auto usual = packed(decimal_t::from_parts(hundredths, 2));
    return shortest_text(_type, hundredths, 100, [&_type, &usual](const decimal_t& _number) {
        return packed(_number) == usual && in_range(_type, _number);
    });
}

encoded_t encode_float32(const data_point_type_t& _type, const QString& _text) {
    const auto exact = decimal_t::from_text(_text);
    if (!exact) {
        return encoded_t::refused(refusal_t::no_number);
    }
    QByteArray digits = _text.toLatin1();
    digits.remove(0, digits.startsWith('+') ? 1 : 0);
    float number = 0;
    const auto end = std::from_chars(digits.cbegin(), digits.cend(), number);
    // Also what is nearer to 0 than any float.
    if (end.ec != std::errc() && exact->rounded() != 0) {
        return encoded_t::refused(refusal_t::out_of_range);
    }
    return {wire_bytes(_type, std::bit_cast<quint32>(number)), {}};
}

std::optional<QString> decode_float32(const data_point_type_t&, const QByteArray& _bytes) {
    const auto number = std::bit_cast<float>(quint32(wire_number(_bytes)));
    if (!std::isfinite(number)) {
        return std::nullopt;
    }
    std::array<char, 128> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::fixed);
    return QString::fromLatin1(digits.data(), end.ptr - digits.data());
}

}  // namespace knx
