#include "store/transaction_t.h"

namespace database::store {

using ::base::result_t;

transaction_t::transaction_t(connection_t& _connection, kind_t _kind)
    : connection(_connection),
      begin_result(_connection.run(_kind == kind_t::writing ? QStringLiteral("BEGIN IMMEDIATE")
                                                            : QStringLiteral("BEGIN"))),
      open(begin_result.is_ok()) {}

transaction_t::~transaction_t() {
    if (open) {
        // Fails only when SQLite has rolled back on its own, for example on a full disk.
        static_cast<void>(connection.run(QStringLiteral("ROLLBACK")));
    }
}

result_t transaction_t::commit() {
    result_t result = connection.run(QStringLiteral("COMMIT"));
    open = open && !result.is_ok();
    return result;
}

}  // namespace database::store
