#include "store/store_difference_t.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace database::store {

using ::base::result_t;

namespace {

struct table_t {
    const char* name;
    const char* column_names;
    qsizetype keys;  ///< how many of the columns name a row
    qsizetype kept;  ///< a row stays when these are the same; one with another name is another user

    QStringList columns() const {
        return QString::fromLatin1(column_names).split(QLatin1String(", "));
    }
};

/// Each behind those that it refers to.
constexpr std::array tables{
    table_t{"items", "id, value, writable, min, max, step, knx", 1, 1},
    table_t{"scenarios", "id, execution, knx", 1, 1},
    table_t{"thermostats", "id, id_actual, id_windows_contact", 1, 1},
    table_t{"thermostat_ids", "thermostat, key, item", 2, 2},
    table_t{"elements", "id, name, type, flags, scenario, thermostat", 1, 1},
    table_t{"functions", "element, name, item", 2, 2},
    table_t{"users", "id, username, password_hash", 1, 2},
    table_t{"permissions", "user, element, bits", 2, 2},
};

QString list(const QStringList& _columns) {
    return _columns.join(QLatin1String(", "));
}

/// "t.id = n.id AND ..." of the first columns; of the others, which may be NULL, "t.item IS
/// n.item".
QString same(const table_t& _table, qsizetype _count) {
    QStringList terms;
    for (const QString& column : _table.columns().mid(0, _count)) {
        terms += (terms.size() < _table.kept ? QStringLiteral("t.%1 = n.%1")
                                             : QStringLiteral("t.%1 IS n.%1"))
                     .arg(column);
    }
    return terms.join(QLatin1String(" AND "));
}

QString create_next(const table_t& _table) {
    return QStringLiteral("CREATE TEMP TABLE next_%1 (%2, PRIMARY KEY (%3)) WITHOUT ROWID")
        .arg(QLatin1String(_table.name), list(_table.columns()),
             list(_table.columns().mid(0, _table.keys)));
}

QString remove_gone(const table_t& _table) {
    return QStringLiteral(
               "DELETE FROM %1 AS t WHERE NOT EXISTS (SELECT 1 FROM next_%1 AS n "
               "WHERE %2)")
        .arg(QLatin1String(_table.name), same(_table, _table.kept));
}

QString put_different(const table_t& _table) {
    QStringList updates;
    for (const QString& column : _table.columns().mid(_table.keys)) {
        updates += QStringLiteral("%1 = excluded.%1").arg(column);
    }
    return QStringLiteral(
               "INSERT INTO %1 (%2) SELECT %2 FROM next_%1 AS n WHERE NOT EXISTS "
               "(SELECT 1 FROM %1 AS t WHERE %3) ON CONFLICT (%4) DO UPDATE SET %5")
        .arg(QLatin1String(_table.name), list(_table.columns()),
             same(_table, _table.columns().size()), list(_table.columns().mid(0, _table.keys)),
             list(updates));
}

}  // namespace

result_t store_difference_t::run(const QString& _sql) {
    const result_t result = connection.run(_sql);
    changed += result.is_ok() ? std::max(connection.changed_rows(), 0) : 0;
    return result;
}

result_t store_difference_t::begin() {
    result_t result;
    for (const table_t& table : tables) {
        if (result.is_ok()) {
            result = connection.run(create_next(table));
        }
    }
    return result;
}

result_t store_difference_t::write() {
    changed = 0;
    result_t result;
    for (auto table = tables.crbegin(); result.is_ok() && table != tables.crend(); ++table) {
        result = run(remove_gone(*table));
    }
    for (const table_t& table : tables) {
        if (result.is_ok()) {
            result = run(put_different(table));
        }
    }
    for (const table_t& table : tables) {
        if (result.is_ok()) {
            result = connection.run(QStringLiteral("DROP TABLE next_") + QLatin1String(table.name));
        }
    }
    return result;
}

}  // namespace database::store
