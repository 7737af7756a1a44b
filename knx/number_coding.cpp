#include "knx/number_coding.h"

#include <QtEndian>
#include <algorithm>

namespace knx {

namespace {

/// Fraction digits of a number before it is divided: what comes behind is nothing that a scale of
/// at most 64 bits can tell.
constexpr int kept_decimals = 12;
constexpr qint64 kept_unit = 1'000'000'000'000;

/// Added to a scene's number: the device learns it.
constexpr qint64 learns = 128;

bool is_signed(const data_point_type_t& _type) {
    return *_type.lowest == '-';
}

qint64 signed_number(const data_point_type_t& _type, const QByteArray& _bytes) {
    const quint64 number = wire_number(_bytes);
    const int unused = 64 - 8 * _type.bytes();
    return is_signed(_type) ? qint64(number << unused) >> unused : qint64(number);
}

std::optional<decimal_t> end_of_range(const char* _text) {
    return decimal_t::from_text(QString::fromLatin1(_text));
}

/// A whole number in the type's range.
struct whole_t {
    qint64 number = 0;
    std::optional<refusal_t> refusal;
};

whole_t whole_number(const data_point_type_t& _type, const QString& _text) {
    const auto number = decimal_t::from_text(_text);
    if (!number) {
        return {0, refusal_t::no_number};
    }
    if (!number->is_whole()) {
        return {0, refusal_t::no_whole_number};
    }
    const auto rounded = number->rounded();
    if (!in_range(_type, *number) || !rounded) {
        return {0, refusal_t::out_of_range};
    }
    return {*rounded, {}};
}

std::optional<qint64> scaled(const data_point_type_t& _type, const decimal_t& _value) {
    if (_type.multiplier == 1 && _type.divisor == 1) {
        return _value.rounded();
    }
    const auto product = _value.times(_type.multiplier).rounded(kept_decimals);
    if (!product) {
        return std::nullopt;
    }
    const qint64 step = kept_unit * _type.divisor;
    return (*product < 0 ? *product - step / 2 : *product + step / 2) / step;
}

bool is_scene(coding_t _coding, qint64 _number) {
    const bool used = _number >= 1 && _number <= 64;
    return used ||
           (_coding == coding_t::scene_control && _number > learns && _number <= learns + 64);
}

}  // namespace

QByteArray wire_bytes(const data_point_type_t& _type, qint64 _number) {
    QByteArray bytes(8, '\0');
    qToBigEndian(_number, bytes.data());
    return bytes.right(_type.bytes());
}

quint64 wire_number(const QByteArray& _bytes) {
    const QByteArray filled = QByteArray(8 - _bytes.size(), '\0') + _bytes;
    return qFromBigEndian<quint64>(filled.constData());
}

bool in_range(const data_point_type_t& _type, const decimal_t& _number) {
    const auto lowest = end_of_range(_type.lowest);
    const auto highest = end_of_range(_type.highest);
    return (!lowest || decimal_t::compare(*lowest, _number) <= 0) &&
           (!highest || decimal_t::compare(_number, *highest) <= 0);
}

std::optional<QString> shortest_text(const data_point_type_t& _type, qint64 _numerator,
                                     qint64 _denominator,
                                     const std::function<bool(const decimal_t&)>& _fits) {
    const auto text_of = [&_fits](const std::optional<decimal_t>& _number) {
        return _number && _fits(*_number) ? std::optional(_number->text()) : std::nullopt;
    };
    const qint64 away = _numerator < 0 ? -1 : 1;
    qint64 numerator = _numerator;
    for (int decimals = 0; decimals <= 6; ++decimals, numerator *= 10) {
        const qint64 inner = numerator / _denominator;
        const bool outer_is_nearer = qAbs(numerator % _denominator) * 2 >= _denominator;
        const qint64 nearest = outer_is_nearer ? inner + away : inner;
        const qint64 other = outer_is_nearer ? inner : inner + away;
        for (const qint64 candidate : {nearest, other}) {
            if (const auto text = text_of(decimal_t::from_parts(candidate, decimals))) {
                return text;
            }
        }
    }
    const auto lowest = text_of(end_of_range(_type.lowest));
    return lowest ? lowest : text_of(end_of_range(_type.highest));
}

encoded_t encode_code(const data_point_type_t& _type, const QString& _text) {
    const whole_t whole = whole_number(_type, _text);
    return whole.refusal ? encoded_t::refused(*whole.refusal)
                         : encoded_t{wire_bytes(_type, whole.number), {}};
}

std::optional<QString> decode_code(const data_point_type_t& _type, const QByteArray& _bytes) {
    const decimal_t number = decimal_t::from_parts(qint64(wire_number(_bytes)), 0);
    return in_range(_type, number) ? std::optional(number.text()) : std::nullopt;
}

encoded_t encode_quantity(const data_point_type_t& _type, const QString& _text) {
    const auto number = decimal_t::from_text(_text);
    if (!number) {
        return encoded_t::refused(refusal_t::no_number);
    }
    const auto steps = in_range(_type, *number) ? scaled(_type, *number) : std::nullopt;
    return steps ? encoded_t{wire_bytes(_type, *steps), {}}
                 : encoded_t::refused(refusal_t::out_of_range);
}

std::optional<QString> decode_quantity(const data_point_type_t& _type, const QByteArray& _bytes) {
    const qint64 steps = signed_number(_type, _bytes);
    if (_type.multiplier == 1 && _type.divisor == 1) {
        const decimal_t number = decimal_t::from_parts(steps, 0);
        return in_range(_type, number) ? std::optional(number.text()) : std::nullopt;
    }
    return shortest_text(_type, steps * _type.divisor, _type.multiplier,
                         [&_type, steps](const decimal_t& _number) {
                             return scaled(_type, _number) == steps && in_range(_type, _number);
                         });
}

encoded_t encode_scene(const data_point_type_t& _type, const QString& _text) {
    const whole_t whole = whole_number(_type, _text);
    if (whole.refusal) {
        return encoded_t::refused(*whole.refusal);
    }
    return is_scene(_type.coding, whole.number) ? encoded_t{wire_bytes(_type, whole.number - 1), {}}
                                                : encoded_t::refused(refusal_t::out_of_range);
}

std::optional<QString> decode_scene(const data_point_type_t& _type, const QByteArray& _bytes) {
    const qint64 number = qint64(wire_number(_bytes)) + 1;
    return is_scene(_type.coding, number) ? std::optional(QString::number(number)) : std::nullopt;
}

}  // namespace knx
