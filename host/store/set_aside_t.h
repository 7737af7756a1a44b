#pragma once

#include <QStringList>
#include <QVariant>

#include "store/connection_t.h"

namespace database::store {

/// A row of a table by its columns; those that name it come first.
struct row_t {
    QString table;
    QStringList columns;
    qsizetype names = 1;  ///< how many columns name it
    QVariantList values;
};

/// Keeps the rows that a migration cannot take over in a table of their own.
class set_aside_t {
 public:
    explicit set_aside_t(connection_t& _connection) : connection(_connection) {}

    /// How many rows notes() tells one by one.
    static constexpr int told = 500;

    ::base::result_t add(const row_t& _row, const QString& _reason);

    /// One sentence for each row, and one for all above told; none shows more of a row than its
    /// name.
    QStringList notes() const;

 private:
    connection_t& connection;
    QStringList sentences;
    int untold = 0;
};

}  // namespace database::store
