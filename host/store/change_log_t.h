#pragma once

#include "store/change_batch_t.h"
#include "store/connection_t.h"

namespace database::store {

/// The change table as its one reader, the running server, uses it.
class change_log_t {
 public:
    explicit change_log_t(connection_t& _connection) : connection(_connection) {}

    /// Whether another connection has committed since the last call; nothing is read.
    ::base::result_of_t<bool> foreign_commit();
    /// Makes the next foreign_commit() true.
    void forget() { data_version = -1; }
    /// Reads the rows above @p _after. To be called inside the transaction that reads what the
    /// rows point to.
    ::base::result_of_t<change_batch_t> read(qint64 _after);
    /// Number of the newest row, 0 when there is none. Inside the transaction of a whole read.
    ::base::result_of_t<qint64> last_sequence();
    /// Number of the newest row that there ever was: rows are deleted when they have been read.
    ::base::result_of_t<qint64> newest_ever();
    /// Deletes the rows up to @p _sequence.
    ::base::result_t prune(qint64 _sequence);
    /// Deletes all rows.
    ::base::result_t clear();
    /// Deletes the rows above @p _sequence and leaves one that means "read everything again".
    ::base::result_t collapse(qint64 _sequence);
    /// The same when they are about more than @p _most elements and thermostats.
    ::base::result_t collapse_above(qint64 _sequence, int _most);

 private:
    connection_t& connection;
    int data_version = -1;
};

}  // namespace database::store
