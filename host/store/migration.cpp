#include "store/migration.h"

#include <QSqlQuery>

#include "database/name_rules.h"
#include "store/database_copy.h"
#include "store/schema.h"
#include "store/table_rebuild_t.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

/// What the next layout asks for beyond tables made anew, see table_rebuild_t: a column that is new
/// and has a default needs nothing but its row here.
struct step_t {
    int from;                ///< the layout
    QStringList new_tables;  ///< which it lacks

    /// Changes rows that the new tables would refuse without need; they are still in the old ones.
    result_t (*mend)(connection_t& _connection);
    /// Adds what only the new tables have.
    result_t (*complete)(connection_t& _connection);
};

/// Texts that are no names are cleaned, not set aside.
result_t clean_texts(connection_t& _connection, const QString& _table, const QString& _column,
                     QString (*_clean)(const QString&)) {
    QList<QVariantList> cleaned;
    result_t result = _connection.each(
        QStringLiteral("SELECT %2, rowid FROM %1 WHERE typeof(%2) <> 'text' OR instr(%2, char(0))")
            .arg(_table, _column),
        {}, [&cleaned, _clean](const QSqlQuery& _row) {
            cleaned.append({_clean(_row.value(0).toString()), _row.value(1)});
        });
    const QString update =
        QStringLiteral("UPDATE %1 SET %2 = ? WHERE rowid = ?").arg(_table, _column);
    for (qsizetype i = 0; result.is_ok() && i < cleaned.size(); ++i) {
        result = _connection.run(update, cleaned.at(i));
    }
    return result;
}

result_t mend_layout_1(connection_t& _connection) {
    const result_t names =
        clean_texts(_connection, QStringLiteral("elements"), QStringLiteral("name"), cleaned_text);
    return names.is_ok() ? clean_texts(_connection, QStringLiteral("items"),
                                       QStringLiteral("value"), cleaned_value)
                         : names;
}

/// Layout 1 did not say whether an import was ever committed.
result_t complete_layout_2(connection_t& _connection) {
    return _connection.run(
        QStringLiteral("INSERT INTO meta SELECT 'imported', 'before layout 2' WHERE EXISTS "
                       "(SELECT 1 FROM meta UNION ALL SELECT 1 FROM elements UNION ALL "
                       "SELECT 1 FROM users UNION ALL SELECT 1 FROM set_aside)"));
}

/// One for each layout that was ever in use, the oldest first.
const QList<step_t>& steps() {
    static const QList<step_t> list{
        {1, {QStringLiteral("set_aside")}, mend_layout_1, complete_layout_2},
        {2, {}, nullptr, nullptr},
        {3, {}, nullptr, nullptr}};
    return list;
}

using action_t = result_t (*step_t::*)(connection_t& _connection);

result_t run_steps(connection_t& _connection, int _layout, action_t _action) {
    result_t result;
    for (const step_t& step : steps()) {
        if (result.is_ok() && step.from >= _layout && step.*_action != nullptr) {
            result = (step.*_action)(_connection);
        }
    }
    return result;
}

}  // namespace

QStringList tables_of_layout(int _layout) {
    QStringList tables = table_names();
    for (const step_t& step : steps()) {
        for (const QString& table : step.new_tables) {
            if (step.from >= _layout) {
                tables.removeOne(table);
            }
        }
    }
    return tables;
}

result_of_t<QStringList> migrate(connection_t& _connection, int _layout, int _busy_ms) {
    const result_of_t<QString> copy = copy_database(_connection.path(), _layout, _busy_ms);
    if (!copy.is_ok()) {
        return copy;
    }
    table_rebuild_t rebuild(_connection, tables_of_layout(_layout));
    result_t result = run_steps(_connection, _layout, &step_t::mend);
    if (result.is_ok()) {
        result = rebuild.run();
    }
    if (result.is_ok()) {
        result = run_steps(_connection, _layout, &step_t::complete);
    }
    if (result.is_ok()) {
        result = mark_layout(_connection);
    }
    if (!result.is_ok()) {
        return result;
    }
    return QStringList(
               QStringLiteral("The database %1 had layout %2 and has layout %3 now; what it "
                              "was is kept in %4.")
                   .arg(_connection.path(), QString::number(_layout),
                        QString::number(schema_version), copy.value)) +
           rebuild.notes();
}

}  // namespace database::store
