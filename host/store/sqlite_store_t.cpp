#include "store/sqlite_store_t.h"

#include "store/change_log_t.h"
#include "store/schema.h"
#include "store/store_reader_t.h"
#include "store/store_writer_t.h"
#include "store/transaction_t.h"

namespace database::store {

using installation::installation_t;

result_t sqlite_store_t::open(const QString& _path) {
    return open_database(link, _path, 5000);
}

result_t sqlite_store_t::read(installation_t* _target) {
    transaction_t transaction(link, transaction_t::kind_t::reading);
    installation_t whole;
    const result_t result =
        transaction.begun().ok() ? store_reader_t(link).read_all(&whole) : transaction.begun();
    if (result.ok()) {
        *_target = std::move(whole);
    }
    return result;
}

result_t sqlite_store_t::replace(const installation_t& _installation) {
    transaction_t transaction(link, transaction_t::kind_t::writing);
    if (!transaction.begun().ok()) {
        return transaction.begun();
    }
    change_log_t log(link);
    store_writer_t writer(link);
    const qint64 before = log.last_sequence();
    result_t result = writer.clear();
    if (result.ok()) {
        result = writer.write(_installation);
    }
    if (result.ok()) {
        result = log.collapse(before);
    }
    return result.ok() ? transaction.commit() : result;
}

}  // namespace database::store
