#pragma once

#include <QVariant>
#include <functional>
#include <memory>

#include "base/result_t.h"
#include "store/file_identity_t.h"

class QSqlQuery;

namespace database::store {

/// One connection to an SQLite file. Keeps the statements it has run prepared, so a statement
/// that is run for each of many rows is compiled once. To be used on the thread that opened it.
class connection_t {
 public:
    enum class access_t { read_only, read_write };
    /// Why a statement failed.
    enum class cause_t {
        none,
        busy,     ///< another program kept the file longer than the busy time
        damaged,  ///< what is in the file is no database, or a broken one
        refused,  ///< a constraint forbids it
        other
    };
    using row_t = std::function<void(const QSqlQuery& _row)>;

    connection_t();
    ~connection_t();
    Q_DISABLE_COPY_MOVE(connection_t)

    /// Opens @p _path; closes what was open before.
    /// @param _busy_ms how long a statement waits for another writer, in milliseconds
    ::base::result_t open(const QString& _path, access_t _access, int _busy_ms);
    void close();
    QString path() const;
    /// That the opened file is the one that the path leads to. One that was removed or replaced
    /// takes changes all the same, and nobody else ever sees them.
    ::base::result_t check_place() const;
    /// Which file is open; nothing: none, or nobody knows.
    std::optional<file_identity_t> file() const;

    /// Runs one statement; rows that it yields are ignored.
    ::base::result_t run(const QString& _sql, const QVariantList& _values = {});
    /// Runs one statement and calls @p _row for each row.
    ::base::result_t each(const QString& _sql, const QVariantList& _values, const row_t& _row);
    /// First column of the first row; an invalid value without a row.
    ::base::result_of_t<QVariant> value(const QString& _sql, const QVariantList& _values = {});

    /// Rows that the last run() changed.
    int changed_rows() const;
    /// Of the last statement.
    cause_t cause() const;

 private:
    struct impl_t;
    std::unique_ptr<impl_t> impl;
};

}  // namespace database::store
