#include "ets/csv_layout_t.h"

#include <array>

namespace ets {

namespace {

using row_t = csv_layout_t::row_t;
using kind_t = csv_layout_t::kind_t;

constexpr int absent = -1;
constexpr int invalid = -2;

/// A level in a column of its own; groups of addresses leave the lower ones empty.
int level(const QString& _cell) {
    if (_cell.isEmpty() || _cell == QLatin1String("-")) {
        return absent;
    }
    bool is_number = false;
    const int value = _cell.toInt(&is_number);
    return is_number && value >= 0 ? value : invalid;
}

row_t range(int _level) {
    row_t row;
    row.kind = kind_t::range;
    row.level = _level;
    return row;
}

row_t address_or_nothing(const QString& _text) {
    const auto address = knx::group_address_t::from_text(_text);
    row_t row;
    if (address) {
        row.kind = kind_t::address;
        row.address = *address;
        row.style = knx::group_address_t::style_of(_text);
    }
    return row;
}

/// Levels below 0 make texts that are no addresses.
row_t joined(std::initializer_list<int> _levels) {
    QStringList texts;
    for (const int number : _levels) {
        texts.append(QString::number(number));
    }
    return address_or_nothing(texts.join(u'/'));
}

/// "1/2/3", or "1/2/-" and "1/-/-" for groups of addresses.
row_t from_one(const QString& _cell) {
    if (_cell.endsWith(QLatin1String("/-"))) {
        const bool is_main = _cell.count(u'-') == _cell.count(u'/');
        return range(is_main ? 0 : 1);
    }
    return address_or_nothing(_cell);
}

row_t from_two(int _main, int _sub) {
    return _main >= 0 && _sub == absent ? range(0) : joined({_main, _sub});
}

row_t from_three(int _main, int _middle, int _sub) {
    if (_main >= 0 && _sub == absent && _middle != invalid) {
        return range(_middle == absent ? 0 : 1);
    }
    return _middle == absent ? joined({_main, _sub}) : joined({_main, _middle, _sub});
}

/// How many rows are addresses; 0 when most are nothing that the layout has.
int count_addresses(const csv_layout_t& _layout, const QList<csv_row_t>& _rows) {
    int count = 0;
    int nothing = 0;
    for (const csv_row_t& row : _rows) {
        const kind_t kind = _layout.row(row.cells).kind;
        count += kind == kind_t::address ? 1 : 0;
        nothing += kind == kind_t::nothing ? 1 : 0;
    }
    return 2 * nothing > _rows.size() ? 0 : count;
}

}  // namespace

row_t csv_layout_t::row(const QStringList& _cells) const {
    if (_cells.size() < end()) {
        return {};
    }
    const auto cell = [&](int _place) { return _cells[names + _place].trimmed(); };
    row_t row = addresses == 1   ? from_one(cell(0))
                : addresses == 2 ? from_two(level(cell(0)), level(cell(1)))
                                 : from_three(level(cell(0)), level(cell(1)), level(cell(2)));
    for (int column = 0; column < names; ++column) {
        row.name = _cells[column].isEmpty() ? row.name : _cells[column];
    }
    return row;
}

std::optional<csv_layout_t> csv_layout_t::of(const QList<csv_row_t>& _rows, int* _count) {
    // In this order: a part of an address may look like a whole one, never the other way round.
    static constexpr std::array<csv_layout_t, 9> candidates{
        {{3, 3}, {1, 3}, {2, 3}, {3, 2}, {1, 2}, {2, 2}, {3, 1}, {2, 1}, {1, 1}}};
    for (const csv_layout_t& candidate : candidates) {
        *_count = count_addresses(candidate, _rows);
        if (*_count > 0) {
            return candidate;
        }
    }
    return std::nullopt;
}

}  // namespace ets
