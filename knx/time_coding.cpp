#include "knx/time_coding.h"

#include <QDate>
#include <QRegularExpression>

namespace knx {

namespace {

/// The flags of a date and time.
enum flag_t : quint8 {
    fault = 0x80,
    no_working_day = 0x20,
    no_year = 0x10,
    no_date = 0x08,
    no_day_of_week = 0x04,
    no_time = 0x02,
};

struct clock_t {
    int hour = 0;
    int minute = 0;
    int second = 0;

    /// The end of a day is 24:00:00 where the type knows it.
    bool is_valid(int _last_hour) const {
        return hour <= _last_hour && minute <= 59 && second <= 59 &&
               (hour < 24 || (minute == 0 && second == 0));
    }
    QString text() const {
        const auto two = [](int _number) {
            return QStringLiteral("%1").arg(_number, 2, 10, QLatin1Char('0'));
        };
        return two(hour) + QLatin1Char(':') + two(minute) + QLatin1Char(':') + two(second);
    }
};

std::optional<clock_t> clock_of(const QString& _text, int _last_hour) {
    static const QRegularExpression form(
        QStringLiteral("\\A([0-9]{2}):([0-9]{2})(?::([0-9]{2}))?\\z"));
    const QRegularExpressionMatch match = form.match(_text);
    const clock_t clock{match.captured(1).toInt(), match.captured(2).toInt(),
                        match.captured(3).toInt()};
    return match.hasMatch() && clock.is_valid(_last_hour) ? std::optional(clock) : std::nullopt;
}

std::optional<QDate> date_of(const QString& _text, int _first_year, int _last_year) {
    static const QRegularExpression form(QStringLiteral("\\A[0-9]{4}-[0-9]{2}-[0-9]{2}\\z"));
    const QDate date =
        form.match(_text).hasMatch() ? QDate::fromString(_text, Qt::ISODate) : QDate();
    return date.isValid() && date.year() >= _first_year && date.year() <= _last_year
               ? std::optional(date)
               : std::nullopt;
}

int byte_of(const QByteArray& _bytes, qsizetype _place) {
    return quint8(_bytes[_place]);
}

encoded_t wrong_form() {
    return encoded_t::refused(refusal_t::wrong_form);
}

}  // namespace

encoded_t encode_time_of_day(const data_point_type_t&, const QString& _text) {
    static const QRegularExpression form(QStringLiteral("\\A-W-([1-7])T(.*)\\z"));
    const QRegularExpressionMatch match = form.match(_text);
    const auto clock = clock_of(match.hasMatch() ? match.captured(2) : _text, 23);
    if (!clock) {
        return wrong_form();
    }
    const int day = match.captured(1).toInt();
    const char bytes[] = {char(day << 5 | clock->hour), char(clock->minute), char(clock->second)};
    return {QByteArray(bytes, sizeof(bytes)), {}};
}

std::optional<QString> decode_time_of_day(const data_point_type_t&, const QByteArray& _bytes) {
    const int day = byte_of(_bytes, 0) >> 5;
    const clock_t clock{byte_of(_bytes, 0) & 0x1f, byte_of(_bytes, 1), byte_of(_bytes, 2)};
    if (!clock.is_valid(23)) {
        return std::nullopt;
    }
    return day == 0 ? clock.text() : QStringLiteral("-W-%1T").arg(day) + clock.text();
}

encoded_t encode_date(const data_point_type_t&, const QString& _text) {
    const auto date = date_of(_text, 1990, 2089);
    if (!date) {
        return wrong_form();
    }
    const char bytes[] = {char(date->day()), char(date->month()), char(date->year() % 100)};
    return {QByteArray(bytes, sizeof(bytes)), {}};
}

std::optional<QString> decode_date(const data_point_type_t&, const QByteArray& _bytes) {
    const int year = byte_of(_bytes, 2);
    const QDate date(year < 90 ? 2000 + year : 1900 + year, byte_of(_bytes, 1), byte_of(_bytes, 0));
    return year <= 99 && date.isValid() ? std::optional(date.toString(Qt::ISODate)) : std::nullopt;
}

encoded_t encode_date_and_time(const data_point_type_t& _type, const QString& _text) {
    const qsizetype middle = _text.indexOf(QLatin1Char('T'));
    const auto date = date_of(middle < 0 ? _text : _text.left(middle), 1900, 2155);
    const auto clock = clock_of(middle < 0 ? _text : _text.mid(middle + 1), 24);
    if ((middle >= 0 && !(date && clock)) || !(date || clock)) {
        return wrong_form();
    }
    QByteArray bytes(_type.bytes(), '\0');
    // Whether people work on that day is not known.
    int flags = no_working_day;
    if (date) {
        bytes[0] = char(date->year() - 1900);
        bytes[1] = char(date->month());
        bytes[2] = char(date->day());
        bytes[3] = char(date->dayOfWeek() << 5);
    } else {
        flags |= no_year | no_date | no_day_of_week;
    }
    if (clock) {
        bytes[3] = char(byte_of(bytes, 3) | clock->hour);
        bytes[4] = char(clock->minute);
        bytes[5] = char(clock->second);
    } else {
        flags |= no_time;
    }
    bytes[6] = char(flags);
    return {bytes, {}};
}

std::optional<QString> decode_date_and_time(const data_point_type_t&, const QByteArray& _bytes) {
    const int flags = byte_of(_bytes, 6);
    const bool has_date = (flags & (no_year | no_date)) == 0;
    const bool has_time = (flags & no_time) == 0;
    const QDate date(1900 + byte_of(_bytes, 0), byte_of(_bytes, 1), byte_of(_bytes, 2));
    const clock_t clock{byte_of(_bytes, 3) & 0x1f, byte_of(_bytes, 4), byte_of(_bytes, 5)};
    const bool is_wrong = (flags & fault) != 0 || (has_date && !date.isValid()) ||
                          (has_time && !clock.is_valid(24)) || !(has_date || has_time);
    if (is_wrong) {
        return std::nullopt;
    }
    const QString day = has_date ? date.toString(Qt::ISODate) : QString();
    const QString between = has_date && has_time ? QStringLiteral("T") : QString();
    return day + between + (has_time ? clock.text() : QString());
}

}  // namespace knx
