#include "store/sqlite_store_t.h"

#include <QDateTime>
#include <algorithm>

#include "database/name_rules.h"
#include "store/change_log_t.h"
#include "store/open_database.h"
#include "store/store_difference_t.h"
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
    // Hashes belong in no temporary file.
    result_t result = link.run(QStringLiteral("PRAGMA temp_store = MEMORY"));
    if (!result.is_ok()) {
        return result;
    }
    transaction_t transaction(link, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    change_log_t log(link);
    const ::base::result_of_t<qint64> before = log.last_sequence();
    installation_t next = _installation;
    result = before.is_ok() ? keep_passwords(&next) : result_t(before);
    if (result.is_ok()) {
        result = write_difference(next);
    }
    if (result.is_ok()) {
        result = log.collapse_above(before.value, told_singly);
    }
    return result.is_ok() ? transaction.commit() : result;
}

result_t sqlite_store_t::write_difference(const installation_t& _next) {
    store_difference_t difference(link);
    result_t result = difference.begin();
    if (result.is_ok()) {
        result = store_writer_t(link).write(_next);
    }
    if (result.is_ok()) {
        result = difference.write();
    }
    int changed = difference.changed_rows();
    if (result.is_ok()) {
        result = link.run(QStringLiteral("INSERT INTO meta (key, value) VALUES ('topic', ?) "
                                         "ON CONFLICT (key) DO UPDATE SET value = excluded.value "
                                         "WHERE value IS NOT excluded.value"),
                          {text_value(_next.topic)});
        changed += std::max(link.changed_rows(), 0);
    }
    if (result.is_ok() && changed > 0) {
        result = link.run(QStringLiteral("INSERT INTO meta (key, value) VALUES ('imported', ?) "
                                         "ON CONFLICT (key) DO UPDATE SET value = excluded.value"),
                          {QDateTime::currentDateTimeUtc().toString(Qt::ISODate)});
    }
    return result;
}

}  // namespace database::store
