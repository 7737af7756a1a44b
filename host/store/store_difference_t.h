#pragma once

#include "store/connection_t.h"

namespace database::store {

/// Makes the tables of the installation hold what others of the same columns hold, "next_items" and
/// so on, which belong to the connection. Only rows that differ are touched, so that only those are
/// announced. Inside a writing transaction.
class store_difference_t {
 public:
    explicit store_difference_t(connection_t& _connection) : connection(_connection) {}

    /// Makes the other tables, empty.
    ::base::result_t begin();
    /// Writes the difference and drops the other tables.
    ::base::result_t write();

    /// Rows that write() touched.
    int changed_rows() const { return changed; }

 private:
    ::base::result_t run(const QString& _sql);

    connection_t& connection;
    int changed = 0;
};

}  // namespace database::store
