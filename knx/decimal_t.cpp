#include "knx/decimal_t.h"

#include <limits>

namespace knx {

namespace {

constexpr qsizetype longest_text = 64;
constexpr int largest_exponent = 400;

QByteArray digits_at(const QByteArray& _text, qsizetype* _place) {
    const qsizetype begin = *_place;
    while (*_place < _text.size() && _text[*_place] >= '0' && _text[*_place] <= '9') {
        ++*_place;
    }
    return _text.mid(begin, *_place - begin);
}

/// What stands behind the "e".
std::optional<int> power_of(const QByteArray& _text) {
    qsizetype place = _text.startsWith('-') || _text.startsWith('+') ? 1 : 0;
    const QByteArray digits = digits_at(_text, &place);
    const int power = digits.toInt();
    if (digits.isEmpty() || place != _text.size() || power > largest_exponent) {
        return std::nullopt;
    }
    return _text.startsWith('-') ? -power : power;
}

/// The digits before and behind the place where the units end, both filled with zeros.
struct parts_t {
    QByteArray whole;
    QByteArray fraction;
};

parts_t split(const QByteArray& _digits, int _exponent) {
    if (_exponent >= 0) {
        return {_digits + QByteArray(_exponent, '0'), {}};
    }
    const qsizetype behind = -_exponent;
    const QByteArray filled =
        QByteArray(qMax(qsizetype(0), behind - _digits.size()), '0') + _digits;
    return {filled.left(filled.size() - behind), filled.right(behind)};
}

}  // namespace

std::optional<decimal_t> decimal_t::from_text(const QString& _text) {
    const QByteArray text = _text.size() <= longest_text ? _text.toUtf8() : QByteArray();
    const bool is_signed = text.startsWith('-') || text.startsWith('+');
    qsizetype place = is_signed ? 1 : 0;
    decimal_t number;
    number.negative = text.startsWith('-');
    number.digits = digits_at(text, &place);
    bool is_number = !number.digits.isEmpty();
    if (is_number && text.mid(place).startsWith('.')) {
        const QByteArray fraction = digits_at(text, &++place);
        is_number = !fraction.isEmpty();
        number.digits += fraction;
        number.exponent = -int(fraction.size());
    }
    if (is_number && text.mid(place, 1).toLower() == "e") {
        const std::optional<int> power = power_of(text.mid(place + 1));
        is_number = power.has_value();
        number.exponent += power.value_or(0);
        place = text.size();
    }
    if (!is_number || place != text.size()) {
        return std::nullopt;
    }
    number.tidy();
    return number;
}

decimal_t decimal_t::from_parts(qint64 _whole, int _decimals) {
    decimal_t number;
    number.negative = _whole < 0;
    number.digits = QByteArray::number(_whole).mid(_whole < 0 ? 1 : 0);
    number.exponent = -_decimals;
    number.tidy();
    return number;
}

void decimal_t::tidy() {
    qsizetype zeros = 0;
    while (zeros < digits.size() && digits[zeros] == '0') {
        ++zeros;
    }
    digits.remove(0, zeros);
    while (digits.endsWith('0')) {
        digits.chop(1);
        ++exponent;
    }
    if (digits.isEmpty()) {
        negative = false;
        exponent = 0;
    }
}

int decimal_t::compare(const decimal_t& _one, const decimal_t& _other) {
    if (_one.negative != _other.negative) {
        return _one.negative ? -1 : 1;
    }
    if (_one.digits.isEmpty() || _other.digits.isEmpty()) {
        return int(!_one.digits.isEmpty()) - int(!_other.digits.isEmpty());
    }
    const int common = qMin(_one.exponent, _other.exponent);
    const QByteArray one = _one.digits + QByteArray(_one.exponent - common, '0');
    const QByteArray other = _other.digits + QByteArray(_other.exponent - common, '0');
    const int order =
        one.size() != other.size() ? (one.size() < other.size() ? -1 : 1) : one.compare(other);
    return _one.negative ? -order : order;
}

bool decimal_t::is_whole() const {
    return exponent >= 0;
}

decimal_t decimal_t::times(int _factor) const {
    decimal_t product = *this;
    product.digits.clear();
    int carried = 0;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        carried += (*digit - '0') * _factor;
        product.digits.prepend(char('0' + carried % 10));
        carried /= 10;
    }
    product.digits.prepend(QByteArray::number(carried));
    product.tidy();
    return product;
}

std::optional<qint64> decimal_t::rounded(int _power) const {
    const auto [whole, fraction] = split(digits, exponent + _power);
    bool fits = true;
    quint64 number = whole.isEmpty() ? 0 : whole.toULongLong(&fits);
    const quint64 limit = quint64(std::numeric_limits<qint64>::max()) + (negative ? 1 : 0);
    if (!fits || number > limit) {
        return std::nullopt;
    }
    if (!fraction.isEmpty() && fraction[0] >= '5') {
        ++number;
    }
    if (number > limit) {
        return std::nullopt;
    }
    return negative ? qint64(0 - number) : qint64(number);
}

QString decimal_t::text() const {
    const auto [whole, fraction] = split(digits, exponent);
    QString text = QLatin1String(negative ? "-" : "") +
                   (whole.isEmpty() ? QStringLiteral("0") : QString::fromLatin1(whole));
    if (!fraction.isEmpty()) {
        text += QLatin1Char('.') + QString::fromLatin1(fraction);
    }
    return text;
}

}  // namespace knx
