#pragma once

#include <QHash>
#include <QList>
#include <QStringList>

#include "store/connection_t.h"
#include "store/kind_t.h"

namespace database::store {

/// What people look at, a page of rows at a time: whoever shows it may stand still as long as he
/// likes, and no reader keeps the write-ahead log from being cut meanwhile.
class overview_t {
 public:
    explicit overview_t(connection_t& _connection) : connection(_connection) {}

    static constexpr int rows_at_once = 500;

    struct user_row_t {
        QString id;
        QString username;
        int grants = 0;
    };
    struct element_row_t {
        QString id;
        QHash<QString, int> bits;  ///< by user id, of those that were asked for
    };

    struct access_t {
        QString user;  ///< the user name
        QString element;
        QString name;
        int type = 0;
        int bits = 0;
        QString topic;  ///< of the installation
    };

    /// The names behind @p _after in their order, the first ones for an empty one; none: that was
    /// the last.
    ::base::result_of_t<QStringList> names(kind_t _kind, const QString& _after);
    /// The same with what belongs to them.
    ::base::result_of_t<QList<user_row_t>> users(const QString& _after);
    ::base::result_of_t<QList<element_row_t>> grants(const QString& _after,
                                                     const QStringList& _user_ids);
    /// Everything that decides what a user, by name or id, may do with an element.
    ::base::result_of_t<access_t> access(const QString& _user, const QString& _element);
    /// Letters of the longest identifier of an element.
    ::base::result_of_t<int> longest_element();

 private:
    connection_t& connection;
};

}  // namespace database::store
