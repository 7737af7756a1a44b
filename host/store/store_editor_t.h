#pragma once

#include <optional>

#include "store/connection_t.h"

namespace database::store {

/// Single changes of the installation on disk, each a transaction of its own. A user is named by
/// id or by user name. A running server sees every change.
class store_editor_t {
 public:
    explicit store_editor_t(connection_t& _connection) : connection(_connection) {}

    /// @param _bits 1 read, 2 write, 3 both, 0 takes the grant away
    ::base::result_t grant(const QString& _user, const QString& _element, int _bits);

    /// The same on all elements there are, or on those of one type; later ones are not meant.
    /// @return how many elements
    ::base::result_of_t<int> grant_many(const QString& _user, std::optional<int> _type, int _bits);

    /// Adds a user with the id "u-" and the name, or the name alone when it is longer than 62; a
    /// name that is taken is refused.
    ::base::result_t add_user(const QString& _username, const QString& _password_hash);
    /// Another user name for the same id, with its password and its grants.
    ::base::result_t rename_user(const QString& _user, const QString& _username);
    ::base::result_t set_password(const QString& _user, const QString& _password_hash);
    /// How many grants a user has.
    ::base::result_of_t<int> grants_of(const QString& _user);
    /// Removes a user and every grant of it.
    ::base::result_t remove_user(const QString& _user);

    /// The bus's side of an item: what the installation reports, not what a client asks for.
    ::base::result_t set_item(const QString& _item, const QString& _value);
    ::base::result_t set_scenario(const QString& _scenario, bool _execution);

    /// The id of the user that @p _user names; a failure when there is none or nobody can tell. An
    /// id goes before a name.
    ::base::result_of_t<QString> user_id(const QString& _user);
    /// A failure when there is no such element.
    ::base::result_t check_element(const QString& _id);

 private:
    /// A failure when a user has the id or the name.
    ::base::result_t check_free(const QString& _id, const QString& _username);
    ::base::result_t write_grants(const QString& _user, const QVariant& _type, int _bits);
    /// Runs one statement that must change a row; @p _missing when there is none.
    ::base::result_t change_one(const QString& _sql, const QVariantList& _values,
                                const ::base::result_t& _missing);
    /// Notes the change even when the value on disk is this one already: the server may hold
    /// another that it has not saved yet.
    ::base::result_t set_value(const char* _table, const QString& _sql, const QVariant& _value,
                               const QString& _id, const ::base::result_t& _missing);

    connection_t& connection;
};

}  // namespace database::store
