#include "store/stored_names.h"

#include <QFile>
#include <QSqlQuery>

#include "store/connection_t.h"
#include "store/store_writer_t.h"

namespace database::store {

namespace {
/// Somebody waits at a prompt.
constexpr int busy_ms = 300;
}  // namespace

QStringList stored_names(const QString& _path, kind_t _kind, const QString& _begun, int _most) {
    connection_t connection;
    if (!QFile::exists(_path) ||
        !connection.open(_path, connection_t::access_t::read_only, busy_ms).is_ok()) {
        return {};
    }
    QStringList names;
    // Names are of ASCII below '~', so that this is a range of the index.
    const auto read = connection.each(
        QStringLiteral("SELECT %1 FROM %2 WHERE %1 >= ? AND %1 < ? ORDER BY %1 LIMIT ?")
            .arg(name_column_of(_kind), table_of(_kind)),
        {text_value(_begun), QString(_begun + QLatin1Char('~')), _most},
        [&names](const QSqlQuery& _row) { names.append(_row.value(0).toString()); });
    return read.is_ok() ? names : QStringList();
}

}  // namespace database::store
