#include "store/sqlite_store_t.h"

#include "database/name_rules.h"
#include "store/change_log_t.h"
#include "store/open_database.h"
#include "store/store_reader_t.h"
#include "store/store_writer_t.h"
#include "store/transaction_t.h"

namespace database::store {

using ::base::result_t;
using installation::installation_t;

result_t sqlite_store_t::open(const QString& _path) {
    const auto opened = open_database(link, _path, 5000);
    sentences = opened.value;
    return opened;
}

::base::result_of_t<installation_t> sqlite_store_t::read() {
    const transaction_t transaction(link, transaction_t::kind_t::reading);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    installation_t whole;
    store_reader_t reader(link);
    const result_t result = reader.read_all(&whole);
    if (!result.is_ok()) {
        return result;
    }
    sentences += reader.notes();
    return whole;
}

result_t sqlite_store_t::keep_passwords(installation_t* _next) {
    installation_t former;
    store_reader_t reader(link);
    const result_t read = reader.read_accounts(&former);
    if (!read.is_ok()) {
        return read;
    }
    for (auto user = _next->users.begin(); user != _next->users.end(); ++user) {
        const installation::user_t known = former.users.value(user.key());
        if (user->password_hash.isEmpty() && known.username == user->username) {
            user->password_hash = known.password_hash;
        }
        if (user->password_hash.isEmpty()) {
            sentences += QStringLiteral("The user %1 has no password yet and cannot sign in.")
                             .arg(quoted(user->username));
        }
    }
    return {};
}

result_t sqlite_store_t::replace(const installation_t& _installation) {
    transaction_t transaction(link, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    change_log_t log(link);
    store_writer_t writer(link);
    const ::base::result_of_t<qint64> before = log.last_sequence();
    installation_t next = _installation;
    result_t result = before.is_ok() ? keep_passwords(&next) : result_t(before);
    if (result.is_ok()) {
        result = writer.clear();
    }
    if (result.is_ok()) {
        result = writer.write(next);
    }
    if (result.is_ok()) {
        result = log.collapse(before.value);
    }
    return result.is_ok() ? transaction.commit() : result;
}

}  // namespace database::store
