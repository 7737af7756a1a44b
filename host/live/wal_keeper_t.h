#pragma once

#include <QDateTime>

#include "store/connection_t.h"

namespace database::live {

/// Empties a database's write-ahead log whenever nothing was written for a while: it takes no space
/// on a small disk then, and a file that somebody puts in the database's place finds nothing in it
/// that is not its own.
class wal_keeper_t {
 public:
    explicit wal_keeper_t(store::connection_t& _connection) : connection(_connection) {}

    /// To be called now and then; does something when nothing was written since the last call. A
    /// reader of the log makes it wait for another call, at no time for a lock.
    /// @param _busy_ms the connection's own busy time, which it has again afterwards
    void look(int _busy_ms);

 private:
    store::connection_t& connection;
    qint64 size = 0;
    QDateTime written;
};

}  // namespace database::live
