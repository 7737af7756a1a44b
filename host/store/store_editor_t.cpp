#include "store/store_editor_t.h"

#include <QRegularExpression>

#include "store/store_writer_t.h"
#include "store/transaction_t.h"

namespace database::store {

using ::base::result_t;

namespace {

result_t no_such(const char* _kind, const QString& _id) {
    return result_t::failed(QStringLiteral("There is no %1 %2.").arg(QLatin1String(_kind), _id));
}

bool is_username(const QString& _name) {
    static const QRegularExpression allowed(QStringLiteral("\\A[0-9a-zA-Z._-]+\\z"));
    return allowed.match(_name).hasMatch() && !_name.contains(QLatin1String("request"));
}

}  // namespace

result_t store_editor_t::grant(const QString& _user, const QString& _element, int _bits) {
    if (_bits < 0 || _bits > 3) {
        return result_t::failed(
            QStringLiteral("The permission bits %1 are not 0 to 3.").arg(_bits));
    }
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    const QString user = user_id(_user);
    if (user.isEmpty()) {
        return no_such("user", _user);
    }
    if (!exists("elements", _element)) {
        return no_such("element", _element);
    }
    const result_t result =
        _bits == 0
            ? connection.run(
                  QStringLiteral("DELETE FROM permissions WHERE user = ? AND element = ?"),
                  {user, _element})
            : connection.run(
                  QStringLiteral("INSERT INTO permissions (user, element, bits) VALUES (?, ?, ?) "
                                 "ON CONFLICT DO UPDATE SET bits = excluded.bits"),
                  {user, _element, _bits});
    return result.is_ok() ? transaction.commit() : result;
}

result_t store_editor_t::add_user(const QString& _username, const QString& _password_hash) {
    if (!is_username(_username)) {
        return result_t::failed(
            QStringLiteral("The user name \"%1\" is not made of letters, digits, \".\", \"_\" and "
                           "\"-\" alone, or holds the word \"request\".")
                .arg(_username));
    }
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    const QString id = QLatin1String("u-") + _username;
    if (!user_id(_username).isEmpty() || exists("users", id)) {
        return result_t::failed(QStringLiteral("There is a user %1 already.").arg(_username));
    }
    const result_t result = connection.run(
        QStringLiteral("INSERT INTO users (id, username, password_hash) VALUES (?, ?, ?)"),
        {id, _username, text_value(_password_hash)});
    return result.is_ok() ? transaction.commit() : result;
}

result_t store_editor_t::set_password(const QString& _user, const QString& _password_hash) {
    return change_one(QStringLiteral("UPDATE users SET password_hash = ? WHERE id = ?"),
                      {text_value(_password_hash), user_id(_user)}, no_such("user", _user).error);
}

result_t store_editor_t::remove_user(const QString& _user) {
    return change_one(QStringLiteral("DELETE FROM users WHERE id = ?"), {user_id(_user)},
                      no_such("user", _user).error);
}

result_t store_editor_t::set_item(const QString& _item, const QString& _value) {
    return set_value("items", QStringLiteral("UPDATE items SET value = ? WHERE id = ?"),
                     text_value(_value), _item, no_such("item", _item));
}

result_t store_editor_t::set_scenario(const QString& _scenario, bool _execution) {
    return set_value("scenarios", QStringLiteral("UPDATE scenarios SET execution = ? WHERE id = ?"),
                     int(_execution), _scenario, no_such("scenario", _scenario));
}

result_t store_editor_t::set_value(const char* _table, const QString& _sql, const QVariant& _value,
                                   const QString& _id, const result_t& _missing) {
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    result_t result = transaction.begun();
    if (result.is_ok()) {
        result = change_one(_sql, {_value, _id}, _missing.error);
    }
    if (result.is_ok()) {
        result = connection.run(QStringLiteral("INSERT INTO changes (tab, key) VALUES (?, ?)"),
                                {QLatin1String(_table), _id});
    }
    return result.is_ok() ? transaction.commit() : result;
}

QString store_editor_t::user_id(const QString& _user) {
    return connection
        .value(QStringLiteral("SELECT id FROM users WHERE ? IN (id, username) "
                              "ORDER BY id = ? DESC"),
               {_user, _user})
        .toString();
}

bool store_editor_t::exists(const char* _table, const QString& _id) {
    const QString sql = QStringLiteral("SELECT 1 FROM %1 WHERE id = ?").arg(QLatin1String(_table));
    return connection.value(sql, {_id}).isValid();
}

result_t store_editor_t::change_one(const QString& _sql, const QVariantList& _values,
                                    const QString& _sentence) {
    const result_t result = connection.run(_sql, _values);
    return result.is_ok() && connection.changed_rows() == 0 ? result_t::failed(_sentence) : result;
}

}  // namespace database::store
