#include "store/overview_t.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlQuery>

#include "store/store_editor_t.h"
#include "store/store_writer_t.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

result_of_t<QStringList> overview_t::names(kind_t _kind, const QString& _after) {
    QStringList names;
    const result_t read = connection.each(
        QStringLiteral("SELECT %1 FROM %2 WHERE %1 > ? ORDER BY %1 LIMIT %3")
            .arg(name_column_of(_kind), table_of(_kind))
            .arg(rows_at_once),
        {text_value(_after)},
        [&names](const QSqlQuery& _row) { names.append(_row.value(0).toString()); });
    if (!read.is_ok()) {
        return read;
    }
    return names;
}

result_of_t<QList<overview_t::user_row_t>> overview_t::users(const QString& _after) {
    QList<user_row_t> rows;
    const result_t read = connection.each(
        QStringLiteral("SELECT id, username, (SELECT count(*) FROM permissions WHERE user = id) "
                       "FROM users WHERE username > ? ORDER BY username LIMIT %1")
            .arg(rows_at_once),
        {text_value(_after)}, [&rows](const QSqlQuery& _row) {
            rows.append(
                {_row.value(0).toString(), _row.value(1).toString(), _row.value(2).toInt()});
        });
    if (!read.is_ok()) {
        return read;
    }
    return rows;
}

result_of_t<QList<overview_t::element_row_t>> overview_t::grants(const QString& _after,
                                                                 const QStringList& _user_ids) {
    QList<element_row_t> rows;
    const QByteArray users =
        QJsonDocument(QJsonArray::fromStringList(_user_ids)).toJson(QJsonDocument::Compact);
    const result_t read = connection.each(
        QStringLiteral("SELECT page.id, user, bits FROM "
                       "(SELECT id FROM elements WHERE id > ? ORDER BY id LIMIT %1) AS page "
                       "LEFT JOIN permissions ON element = page.id "
                       "AND user IN (SELECT value FROM json_each(?)) ORDER BY page.id")
            .arg(rows_at_once),
        {text_value(_after), QString::fromUtf8(users)}, [&rows](const QSqlQuery& _row) {
            const QString id = _row.value(0).toString();
            if (rows.isEmpty() || rows.constLast().id != id) {
                rows.append({id, {}});
            }
            if (!_row.isNull(1)) {
                rows.last().bits.insert(_row.value(1).toString(), _row.value(2).toInt());
            }
        });
    if (!read.is_ok()) {
        return read;
    }
    return rows;
}

result_of_t<overview_t::access_t> overview_t::access(const QString& _user,
                                                     const QString& _element) {
    store_editor_t editor(connection);
    const auto user = editor.user_id(_user);
    const result_t known = user.is_ok() ? editor.check_element(_element) : result_t(user);
    if (!known.is_ok()) {
        return known;
    }
    access_t access;
    const result_t read = connection.each(
        QStringLiteral("SELECT username, elements.id, name, type, "
                       "ifnull((SELECT bits FROM permissions WHERE user = users.id AND element = "
                       "elements.id), 0), "
                       "(SELECT value FROM meta WHERE key = 'topic') "
                       "FROM users, elements WHERE users.id = ? AND elements.id = ?"),
        {user.value, _element}, [&access](const QSqlQuery& _row) {
            access = {_row.value(0).toString(), _row.value(1).toString(), _row.value(2).toString(),
                      _row.value(3).toInt(),    _row.value(4).toInt(),    _row.value(5).toString()};
        });
    if (!read.is_ok()) {
        return read;
    }
    return access;
}

result_of_t<int> overview_t::longest_element() {
    const auto longest = connection.value(QStringLiteral("SELECT max(length(id)) FROM elements"));
    return longest.is_ok() ? result_of_t<int>(longest.value.toInt()) : result_of_t<int>(longest);
}

}  // namespace database::store
