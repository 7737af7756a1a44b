#include "ets/csv_export.h"

#include <algorithm>

#include "database/name_rules.h"
#include "ets/csv_layout_t.h"
#include "ets/data_point_type.h"
#include "ets/text_encoding.h"

namespace ets {

using base::result_of_t;
using base::result_t;

namespace {

struct table_t {
    QList<csv_row_t> rows;
    csv_layout_t layout;
};

/// The separator with which the most rows are addresses.
result_of_t<table_t> table_of(const QString& _text) {
    table_t best;
    int most = 0;
    QString why;
    for (const QChar separator : {u';', u',', u'\t'}) {
        const auto rows = read_csv(_text, separator);
        if (!rows.is_ok()) {
            why = rows.error;
            continue;
        }
        int count = 0;
        const auto layout = csv_layout_t::of(rows.value, &count);
        if (layout && count > most) {
            most = count;
            best = {rows.value, *layout};
        }
    }
    if (most > 0) {
        return best;
    }
    return result_t::failed(
        why.isEmpty() ? QStringLiteral(
                            "It is no ETS project and no list of group addresses that ETS exports.")
                      : QStringLiteral("It is no list of group addresses: %1.").arg(why));
}

/// Behind the address: central, unfiltered, the description, the type, security; ETS 4 has no type.
QString description_in(const csv_layout_t& _layout, const QStringList& _cells) {
    constexpr int place = 2;
    return _cells.value(_layout.end() + place);
}

QString type_in(const csv_layout_t& _layout, const QStringList& _cells) {
    for (qsizetype column = _layout.end(); column < _cells.size(); ++column) {
        const QString cell = _cells[column].trimmed();
        if (cell.startsWith(QLatin1String("DPT-")) || cell.startsWith(QLatin1String("DPST-"))) {
            return last_type(cell);
        }
    }
    return {};
}

/// Collects the rows of a table.
class collector_t {
 public:
    explicit collector_t(const csv_layout_t& _layout) : layout(_layout) {}

    void add(const csv_row_t& _row, bool _may_be_head) {
        const csv_layout_t::row_t row = layout.row(_row.cells);
        switch (row.kind) {
            case csv_layout_t::kind_t::range:
                ranges.resize(std::min<qsizetype>(ranges.size(), row.level));
                ranges.append(row.name);
                return;
            case csv_layout_t::kind_t::address:
                add_address(_row, row);
                return;
            case csv_layout_t::kind_t::nothing:
                break;
        }
        if (!_may_be_head) {
            project.note(QStringLiteral("Line %1 holds no group address: %2.")
                             .arg(QString::number(_row.line),
                                  database::quoted(_row.cells.join(u' ').simplified())));
        }
    }

    project_t project;

 private:
    void add_address(const csv_row_t& _row, const csv_layout_t::row_t& _read) {
        project.style = project.groups.isEmpty() ? _read.style : project.style;
        const quint16 raw = _read.address.raw();
        if (project.groups.contains(raw)) {
            project.note(
                QStringLiteral("Line %1: %2 is there more than once; the first one is taken.")
                    .arg(QString::number(_row.line), project.address(raw)));
            return;
        }
        project.groups.insert(raw, {.raw = raw,
                                    .name = _read.name,
                                    .description = description_in(layout, _row.cells),
                                    .dpt = type_in(layout, _row.cells),
                                    .ranges = ranges,
                                    .room = {}});
    }

    const csv_layout_t layout;
    QStringList ranges;
};

}  // namespace

result_of_t<project_t> read_csv_export(const QByteArray& _bytes) {
    const auto table = table_of(decoded_text(_bytes));
    if (!table.is_ok()) {
        return table;
    }
    collector_t collector(table.value.layout);
    bool is_first = true;
    for (const csv_row_t& row : table.value.rows) {
        collector.add(row, std::exchange(is_first, false));
    }
    return collector.project;
}

}  // namespace ets
