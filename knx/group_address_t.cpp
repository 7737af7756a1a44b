#include "knx/group_address_t.h"

#include <QList>
#include <QStringList>

namespace knx {

namespace {

struct level_t {
    int highest;
    int bits;
};

/// Highest number and width of each level, from the left.
QList<level_t> levels_of(qsizetype _count) {
    switch (_count) {
        case 1:
            return {{65535, 16}};
        case 2:
            return {{31, 5}, {2047, 11}};
        case 3:
            return {{31, 5}, {7, 3}, {255, 8}};
        default:
            return {};
    }
}

/// Digits and nothing else; -1: none, or more than @p _highest.
int number_of(const QString& _text, int _highest) {
    if (_text.isEmpty() || _text.size() > 5) {
        return -1;
    }
    int number = 0;
    for (const QChar c : _text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return -1;
        }
        number = number * 10 + (c.unicode() - u'0');
    }
    return number <= _highest ? number : -1;
}

}  // namespace

std::optional<group_address_t> group_address_t::from_text(const QString& _text) {
    const QStringList parts = _text.split(QLatin1Char('/'));
    const QList<level_t> levels = levels_of(parts.size());
    int raw = 0;
    for (qsizetype i = 0; i < levels.size(); ++i) {
        const int number = number_of(parts[i], levels[i].highest);
        if (number < 0) {
            return std::nullopt;
        }
        raw = (raw << levels[i].bits) | number;
    }
    return raw == 0 ? std::nullopt : std::optional(group_address_t(quint16(raw)));
}

address_style_t group_address_t::style_of(const QString& _text) {
    return static_cast<address_style_t>(qMin(_text.count(QLatin1Char('/')), qsizetype(2)));
}

QString group_address_t::text(address_style_t _style) const {
    switch (_style) {
        case address_style_t::free:
            return QString::number(number);
        case address_style_t::two_levels:
            return QStringLiteral("%1/%2").arg(number >> 11).arg(number & 0x7ff);
        case address_style_t::three_levels:
            break;
    }
    return QStringLiteral("%1/%2/%3").arg(number >> 11).arg((number >> 8) & 7).arg(number & 0xff);
}

}  // namespace knx
