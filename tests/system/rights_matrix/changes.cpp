#include "system/rights_matrix/changes.h"

#include "system/rights_matrix/matrix_home.h"

namespace matrix {

QStringList statements_for(change_t _change, const QString& _user) {
    const QString grants = QStringLiteral("WHERE user = 'u-%1'").arg(_user);
    const QString account = QStringLiteral("WHERE id = 'u-%1'").arg(_user);
    switch (_change) {
        case change_t::withdrawn:
            return {"DELETE FROM permissions " + grants};
        case change_t::denied:
            return {"UPDATE permissions SET bits = 0 " + grants};
        case change_t::read_only:
            return {"UPDATE permissions SET bits = 1 " + grants};
        case change_t::write_only:
            return {"UPDATE permissions SET bits = 2 " + grants};
        case change_t::removed:
            return {"DELETE FROM users " + account};
        case change_t::new_password:
            // Another user's is as good as any.
            return {QStringLiteral("UPDATE users SET password_hash = (SELECT password_hash FROM "
                                   "users WHERE id = 'u-%1') ")
                        .arg(warden()) +
                    account};
        case change_t::recreated:
            return {"CREATE TEMP TABLE former AS SELECT * FROM users " + account,
                    "DELETE FROM users " + account,
                    QStringLiteral("INSERT INTO users (id, username, password_hash) SELECT "
                                   "'again-%1', username, password_hash FROM former")
                        .arg(_user),
                    "DROP TABLE former"};
    }
    return {};
}

}  // namespace matrix
