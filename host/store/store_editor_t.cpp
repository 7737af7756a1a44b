#include "store/store_editor_t.h"

#include "database/name_rules.h"
#include "store/change_log_t.h"
#include "store/sqlite_store_t.h"
#include "store/store_writer_t.h"
#include "store/transaction_t.h"

namespace database::store {

using ::base::result_t;

namespace {

result_t no_such(const char* _kind, const QString& _id) {
    return result_t::failed(
        QStringLiteral("There is no %1 %2.").arg(QLatin1String(_kind), shown(_id)));
}

result_t check_bits(int _bits) {
    return _bits >= 0 && _bits <= 3
               ? result_t()
               : result_t::failed(
                     QStringLiteral("The permission bits %1 are not 0 to 3.").arg(_bits));
}

result_t check_username(const QString& _username) {
    const QString error = identifier_error(_username);
    return error.isEmpty()
               ? result_t()
               : result_t::failed(
                     QStringLiteral("The user name %1 %2.").arg(quoted(_username), error));
}

/// "u-" and the name, or the name alone where that is too long for an identifier.
QString new_id(const QString& _username) {
    const QString id = QLatin1String("u-") + _username;
    return identifier_error(id).isEmpty() ? id : _username;
}

}  // namespace

result_t store_editor_t::grant(const QString& _user, const QString& _element, int _bits) {
    if (const result_t bits = check_bits(_bits); !bits.is_ok()) {
        return bits;
    }
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    const ::base::result_of_t<QString> user = user_id(_user);
    if (!user.is_ok()) {
        return user;
    }
    if (const result_t element = check_element(_element); !element.is_ok()) {
        return element;
    }
    const result_t result =
        _bits == 0
            ? connection.run(
                  QStringLiteral("DELETE FROM permissions WHERE user = ? AND element = ?"),
                  {user.value, _element})
            : connection.run(
                  QStringLiteral("INSERT INTO permissions (user, element, bits) VALUES (?, ?, ?) "
                                 "ON CONFLICT DO UPDATE SET bits = excluded.bits"),
                  {user.value, _element, _bits});
    return result.is_ok() ? transaction.commit() : result;
}

::base::result_of_t<int> store_editor_t::grant_many(const QString& _user, std::optional<int> _type,
                                                    int _bits) {
    if (const result_t bits = check_bits(_bits); !bits.is_ok()) {
        return bits;
    }
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    const auto user = transaction.begun().is_ok()
                          ? user_id(_user)
                          : ::base::result_of_t<QString>(transaction.begun());
    if (!user.is_ok()) {
        return user;
    }
    const QVariant type = _type ? QVariant(*_type) : QVariant();
    const auto count = connection.value(
        QStringLiteral("SELECT count(*) FROM elements WHERE type = ifnull(?, type)"), {type});
    if (!count.is_ok() || count.value.toInt() == 0) {
        return count.is_ok()
                   ? (_type ? result_t::failed(
                                  QStringLiteral("There is no element of type %1.").arg(*_type))
                            : result_t::failed(QStringLiteral("There is no element.")))
                   : result_t(count);
    }
    result_t result = write_grants(user.value, type, _bits);
    if (result.is_ok()) {
        result = transaction.commit();
    }
    if (!result.is_ok()) {
        return result;
    }
    return count.value.toInt();
}

result_t store_editor_t::write_grants(const QString& _user, const QVariant& _type, int _bits) {
    change_log_t log(connection);
    const auto before = log.last_sequence();
    if (!before.is_ok()) {
        return before;
    }
    const result_t result =
        _bits == 0 ? connection.run(
                         QStringLiteral("DELETE FROM permissions WHERE user = ? AND element IN "
                                        "(SELECT id FROM elements WHERE type = ifnull(?, type))"),
                         {_user, _type})
                   : connection.run(
                         QStringLiteral(
                             "INSERT INTO permissions (user, element, bits) SELECT ?, id, ? FROM "
                             "elements WHERE type = ifnull(?, type) "
                             "ON CONFLICT DO UPDATE SET bits = excluded.bits"),
                         {_user, _bits, _type});
    return result.is_ok() ? log.collapse_above(before.value, sqlite_store_t::told_singly) : result;
}

result_t store_editor_t::rename_user(const QString& _user, const QString& _username) {
    if (const result_t name = check_username(_username); !name.is_ok()) {
        return name;
    }
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    const auto user = transaction.begun().is_ok()
                          ? user_id(_user)
                          : ::base::result_of_t<QString>(transaction.begun());
    change_log_t log(connection);
    const auto before = user.is_ok() ? log.last_sequence() : ::base::result_of_t<qint64>(user);
    result_t result(before);
    if (result.is_ok()) {
        result = check_free(_username, _username);
    }
    if (result.is_ok()) {
        result = connection.run(QStringLiteral("UPDATE users SET username = ? WHERE id = ?"),
                                {_username, user.value});
    }
    if (result.is_ok()) {
        result = log.collapse_above(before.value, sqlite_store_t::told_singly);
    }
    return result.is_ok() ? transaction.commit() : result;
}

result_t store_editor_t::add_user(const QString& _username, const QString& _password_hash) {
    if (const result_t name = check_username(_username); !name.is_ok()) {
        return name;
    }
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    const QString id = new_id(_username);
    if (const result_t name = check_free(id, _username); !name.is_ok()) {
        return name;
    }
    const result_t result = connection.run(
        QStringLiteral("INSERT INTO users (id, username, password_hash) VALUES (?, ?, ?)"),
        {id, _username, text_value(_password_hash)});
    return result.is_ok() ? transaction.commit() : result;
}

result_t store_editor_t::set_password(const QString& _user, const QString& _password_hash) {
    const ::base::result_of_t<QString> user = user_id(_user);
    return user.is_ok()
               ? change_one(QStringLiteral("UPDATE users SET password_hash = ? WHERE id = ?"),
                            {text_value(_password_hash), user.value}, no_such("user", _user))
               : result_t(user);
}

::base::result_of_t<int> store_editor_t::grants_of(const QString& _user) {
    const auto user = user_id(_user);
    if (!user.is_ok()) {
        return user;
    }
    const auto count = connection.value(
        QStringLiteral("SELECT count(*) FROM permissions WHERE user = ?"), {user.value});
    return count.is_ok() ? ::base::result_of_t<int>(count.value.toInt())
                         : ::base::result_of_t<int>(count);
}

result_t store_editor_t::remove_user(const QString& _user) {
    const ::base::result_of_t<QString> user = user_id(_user);
    return user.is_ok() ? change_one(QStringLiteral("DELETE FROM users WHERE id = ?"), {user.value},
                                     no_such("user", _user))
                        : result_t(user);
}

result_t store_editor_t::set_item(const QString& _item, const QString& _value) {
    if (const QString error = value_error(_value); !error.isEmpty()) {
        return result_t::failed(QStringLiteral("The value %1.").arg(error));
    }
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
        result = change_one(_sql, {_value, _id}, _missing);
    }
    if (result.is_ok()) {
        result = connection.run(QStringLiteral("INSERT INTO changes (tab, key) VALUES (?, ?)"),
                                {QLatin1String(_table), _id});
    }
    return result.is_ok() ? transaction.commit() : result;
}

::base::result_of_t<QString> store_editor_t::user_id(const QString& _user) {
    const auto id =
        connection.value(QStringLiteral("SELECT id FROM users WHERE ? IN (id, username) "
                                        "ORDER BY id = ? DESC"),
                         {_user, _user});
    if (!id.is_ok()) {
        return id;
    }
    if (!id.value.isValid()) {
        return no_such("user", _user);
    }
    return id.value.toString();
}

result_t store_editor_t::check_element(const QString& _id) {
    const auto found =
        connection.value(QStringLiteral("SELECT 1 FROM elements WHERE id = ?"), {_id});
    return found.is_ok() && !found.value.isValid() ? no_such("element", _id) : result_t(found);
}

result_t store_editor_t::check_free(const QString& _id, const QString& _username) {
    const auto found =
        connection.value(QStringLiteral("SELECT 1 FROM users WHERE id IN (?, ?) OR username = ?"),
                         {_id, _username, _username});
    return found.value.isValid()
               ? result_t::failed(QStringLiteral("There is a user %1 already.").arg(_username))
               : result_t(found);
}

result_t store_editor_t::change_one(const QString& _sql, const QVariantList& _values,
                                    const result_t& _missing) {
    const result_t result = connection.run(_sql, _values);
    return result.is_ok() && connection.changed_rows() == 0 ? _missing : result;
}

}  // namespace database::store
