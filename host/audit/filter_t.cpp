#include "audit/filter_t.h"

#include <QDateTime>
#include <QHash>

namespace audit {

namespace {

/// "10m" and the like in milliseconds.
std::optional<qint64> span_of(const QString& _text) {
    static const QHash<QChar, qint64> units{{QLatin1Char('s'), 1'000},
                                            {QLatin1Char('m'), 60'000},
                                            {QLatin1Char('h'), 3'600'000},
                                            {QLatin1Char('d'), 86'400'000}};
    const auto unit = _text.isEmpty() ? units.end() : units.find(_text.back());
    bool is_number = false;
    const uint number = _text.chopped(unit == units.end() ? 0 : 1).toUInt(&is_number);
    if (unit == units.end() || !is_number || !_text.front().isDigit()) {
        return std::nullopt;
    }
    return qint64(number) * *unit;
}

}  // namespace

bool filter_t::matches(const entry_t& _entry) const {
    return (user.isEmpty() || _entry.user == user) &&
           (element.isEmpty() || _entry.element == element) && _entry.time >= since;
}

std::optional<qint64> since_of(const QString& _text, qint64 _now) {
    if (const auto span = span_of(_text)) {
        return _now - *span;
    }
    QDateTime time = QDateTime::fromString(_text, Qt::ISODateWithMs);
    if (time.isValid() && time.timeSpec() == Qt::LocalTime) {
        const bool is_day = !_text.contains(QLatin1Char(':'));
        time = QDateTime::fromString(
            _text + (is_day ? QStringLiteral("T00:00:00Z") : QStringLiteral("Z")),
            Qt::ISODateWithMs);
    }
    if (!time.isValid()) {
        return std::nullopt;
    }
    return time.toMSecsSinceEpoch();
}

}  // namespace audit
