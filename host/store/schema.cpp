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

}  // namespace

QStringList table_names() {
    static const QRegularExpression table(QStringLiteral("\\bCREATE TABLE (\\w+)"));
    QStringList names;
    for (const QString& statement : statements()) {
        const QString name = table.match(statement).captured(1);
        names += name.isEmpty() ? QStringList() : QStringList(name);
    }
    return names;
}

result_t create_tables(connection_t& _connection) {
    for (const QString& statement : statements()) {
        const result_t result = _connection.run(statement);
        if (!result.is_ok()) {
            return result;
        }
    }
    const result_t marked =
        _connection.run(QStringLiteral("PRAGMA application_id = %1").arg(application_id));
    return marked.is_ok()
               ? _connection.run(QStringLiteral("PRAGMA user_version = %1").arg(schema_version))
               : marked;
}

}  // namespace database::store
