#include "audit/access_entries.h"

#include <QMap>

#include "audit/operations.h"
#include "database/permission.h"

namespace audit {

using accounts::broker_account_t;

namespace {

QMap<QString, broker_account_t> by_id(const QList<broker_account_t>& _accounts) {
    QMap<QString, broker_account_t> sorted;
    for (const broker_account_t& account : _accounts) {
        sorted.insert(account.id, account);
    }
    return sorted;
}

entry_t made(qint64 _time, QLatin1String _operation, const QString& _user) {
    entry_t entry;
    entry.time = _time;
    entry.user = _user;
    entry.by = by_database;
    entry.operation = _operation;
    return entry;
}

entry_t user_entry(qint64 _time, const QString& _user, const QString& _result) {
    entry_t entry = made(_time, operation::user, _user);
    entry.result = _result;
    return entry;
}

}  // namespace

QList<entry_t> account_entries(const QList<broker_account_t>& _before,
                               const QList<broker_account_t>& _after, qint64 _time) {
    const QMap<QString, broker_account_t> before = by_id(_before);
    const QMap<QString, broker_account_t> after = by_id(_after);
    QList<entry_t> entries;
    for (const broker_account_t& former : before) {
        if (!after.contains(former.id)) {
            entries.append(user_entry(_time, former.name, QStringLiteral("removed")));
        }
    }
    for (const broker_account_t& account : after) {
        const auto former = before.constFind(account.id);
        if (former == before.constEnd()) {
            entries.append(user_entry(_time, account.name, QStringLiteral("added")));
            continue;
        }
        if (former->name != account.name) {
            entries.append(user_entry(_time, account.name, QStringLiteral("renamed")));
            entries.back().detail = QStringLiteral("was ") + former->name;
        }
        if (former->password_hash != account.password_hash) {
            entries.append(made(_time, operation::password, account.name));
            entries.back().result = QStringLiteral("changed");
        }
    }
    return entries;
}

entry_t grant_entry(const database::live::grant_change_t& _change, qint64 _time) {
    entry_t entry = made(_time, operation::grant, _change.username);
    entry.element = _change.element;
    entry.value = database::permission::word(_change.after);
    entry.result = QStringLiteral("changed");
    entry.detail = QStringLiteral("was ") + database::permission::word(_change.before);
    return entry;
}

}  // namespace audit
