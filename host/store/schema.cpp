#include "store/schema.h"

#include <QFile>
#include <QRegularExpression>
#include <algorithm>

namespace database::store {

using ::base::result_t;

namespace {

bool is_comment(const QString& _block) {
    const QStringList lines = _block.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return std::all_of(lines.begin(), lines.end(),
                       [](const QString& _line) { return _line.startsWith(QLatin1String("--")); });
}

/// The statements of schema.sql in their order.
QStringList statements() {
    QFile file(QStringLiteral(":/store/schema.sql"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList blocks = QString::fromUtf8(file.readAll()).split(QLatin1String("\n\n"));
    blocks.removeIf(is_comment);
    return blocks;
}

/// Name of the table that a statement makes; empty: it makes none.
QString table_of(const QString& _statement) {
    static const QRegularExpression table(QStringLiteral("\\bCREATE TABLE (\\w+)"));
    return table.match(_statement).captured(1);
}

result_t run_statements(connection_t& _connection, bool _tables) {
    for (const QString& statement : statements()) {
        const bool wanted = table_of(statement).isEmpty() != _tables;
        const result_t result = wanted ? _connection.run(statement) : result_t();
        if (!result.is_ok()) {
            return result;
        }
    }
    return {};
}

}  // namespace

QStringList table_names() {
    QStringList names;
    for (const QString& statement : statements()) {
        names.append(table_of(statement));
    }
    names.removeAll(QString());
    return names;
}

result_t create_tables(connection_t& _connection) {
    return run_statements(_connection, true);
}

result_t create_triggers(connection_t& _connection) {
    return run_statements(_connection, false);
}

result_t mark_layout(connection_t& _connection) {
    const result_t marked =
        _connection.run(QStringLiteral("PRAGMA application_id = %1").arg(application_id));
    return marked.is_ok()
               ? _connection.run(QStringLiteral("PRAGMA user_version = %1").arg(schema_version))
               : marked;
}

}  // namespace database::store
