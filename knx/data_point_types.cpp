#include "knx/data_point_types.h"

#include <QHash>
#include <algorithm>
#include <tuple>

#include "knx/data_point_rows.h"

namespace knx {

namespace {

QList<data_point_type_t> sorted_rows() {
    QList<data_point_type_t> rows = whole_rows() + float_rows() + composed_rows();
    std::sort(rows.begin(), rows.end(), [](const auto& _one, const auto& _other) {
        return std::tie(_one.main, _one.sub) < std::tie(_other.main, _other.sub);
    });
    return rows;
}

QHash<QString, const data_point_type_t*> rows_by_id() {
    QHash<QString, const data_point_type_t*> found;
    for (const data_point_type_t& row : data_point_types()) {
        found.insert(row.id(), &row);
    }
    return found;
}

bool is_number(QStringView _text, qsizetype _shortest, qsizetype _longest) {
    return _text.size() >= _shortest && _text.size() <= _longest &&
           std::all_of(_text.begin(), _text.end(),
                       [](QChar _c) { return _c >= QLatin1Char('0') && _c <= QLatin1Char('9'); });
}

QString range_of_form(coding_t _coding) {
    switch (_coding) {
        case coding_t::float32:
            return QStringLiteral("any number");
        case coding_t::ascii_text:
            return QStringLiteral("ASCII text");
        case coding_t::latin1_text:
            return QStringLiteral("Latin-1 text");
        case coding_t::time_of_day:
            return QStringLiteral("13:45:30, with a day of the week -W-3T13:45:30");
        case coding_t::date:
            return QStringLiteral("1990-01-01 to 2089-12-31");
        case coding_t::date_and_time:
            return QStringLiteral("1900-01-01T00:00:00 to 2155-12-31T24:00:00");
        default:
            return {};
    }
}

}  // namespace

QString data_point_type_t::id() const {
    return sub == main_type_alone
               ? QString::number(main)
               : QStringLiteral("%1.%2").arg(main).arg(sub, 3, 10, QLatin1Char('0'));
}

int data_point_type_t::bits() const {
    struct width_t {
        int main;
        int bits;
    };
    // Every other main type of the table has one byte.
    static constexpr width_t widths[] = {
        {1, 1},   {2, 2},   {3, 4},   {7, 16},   {8, 16},  {9, 16},  {10, 24},  {11, 24}, {12, 32},
        {13, 32}, {14, 32}, {15, 32}, {16, 112}, {19, 64}, {29, 64}, {232, 24}, {251, 48}};
    const auto* const found = std::find_if(std::begin(widths), std::end(widths),
                                           [this](width_t _row) { return _row.main == main; });
    return found == std::end(widths) ? 8 : found->bits;
}

QString data_point_type_t::range() const {
    QString text =
        *lowest == '\0'
            ? range_of_form(coding)
            : QStringLiteral("%1 to %2").arg(QLatin1String(lowest), QLatin1String(highest));
    if (coding == coding_t::scene_control) {
        text = QStringLiteral("1 to 64, 129 to 192 to learn it");
    }
    return *unit == '\0' ? text : text + QLatin1Char(' ') + QString::fromUtf8(unit);
}

const QList<data_point_type_t>& data_point_types() {
    static const QList<data_point_type_t> rows = sorted_rows();
    return rows;
}

const data_point_type_t* find_data_point_type(const QString& _id) {
    static const QHash<QString, const data_point_type_t*> rows = rows_by_id();
    return rows.value(_id);
}

bool is_data_point_type_id(const QString& _id) {
    const qsizetype point = _id.indexOf(QLatin1Char('.'));
    const QStringView whole(_id);
    if (_id.startsWith(QLatin1Char('0'))) {
        return false;
    }
    return point < 0 ? is_number(whole, 1, 5)
                     : is_number(whole.left(point), 1, 5) && is_number(whole.mid(point + 1), 3, 5);
}

}  // namespace knx
