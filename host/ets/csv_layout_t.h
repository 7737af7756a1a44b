#pragma once

#include <QList>
#include <optional>

#include "ets/csv_text.h"
#include "knx/group_address_t.h"

namespace ets {

/// Which columns of an exported table hold what: one column or several for the parts of a name,
/// then one or several for those of the address. Nothing in the table says it but the cells
/// themselves.
struct csv_layout_t {
    int names = 1;      ///< columns of the name, the first ones
    int addresses = 1;  ///< columns of the address, behind them

    int end() const { return names + addresses; }

    enum class kind_t { nothing, range, address };
    struct row_t {
        kind_t kind = kind_t::nothing;
        knx::group_address_t address;
        knx::address_style_t style = knx::address_style_t::three_levels;
        int level = 0;  ///< of a range: 0 main, 1 middle
        QString name;
    };

    /// What a row is in this layout.
    row_t row(const QStringList& _cells) const;

    /// The layout in which rows are addresses, and how many; nothing: there is none.
    static std::optional<csv_layout_t> of(const QList<csv_row_t>& _rows, int* _count);
};

}  // namespace ets
