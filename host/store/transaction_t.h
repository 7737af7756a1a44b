#pragma once

#include "store/connection_t.h"

namespace database::store {

/// A transaction that is rolled back unless it was committed.
class transaction_t {
 public:
    enum class kind_t {
        reading,  ///< sees one state of the file from its first statement on
        writing   ///< holds the one write lock from the start, so that it cannot fail half-way
    };

    transaction_t(connection_t& _connection, kind_t _kind);
    ~transaction_t();
    Q_DISABLE_COPY_MOVE(transaction_t)

    /// Whether it began; a writing one fails when another writer outlasts the busy time.
    const ::base::result_t& begun() const { return begin_result; }
    ::base::result_t commit();

 private:
    connection_t& connection;
    const ::base::result_t begin_result;
    bool open;
};

}  // namespace database::store
