#include "system/rights_matrix/changes.h"

#include "system/rights_matrix/element_t.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

/// One by one, as torlanctl does: a denial is a grant that is not there.
QStringList denials(const QString& _grants) {
    QStringList statements;
    for (const element_t& element : elements()) {
        statements.append("DELETE FROM permissions " + _grants + " AND element = '" +
                          QString::fromLatin1(element.id) + "'");
    }
    return statements;
}

}  // namespace

QStringList statements_for(change_t _change, const QString& _user) {
    const QString grants = QStringLiteral("WHERE user = 'u-%1'").arg(_user);
    const QString account = QStringLiteral("WHERE id = 'u-%1'").arg(_user);
    switch (_change) {
        case change_t::withdrawn:
            return {"DELETE FROM permissions " + grants};
        case change_t::denied:
            return denials(grants);
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

QString all_granted(const QString& _user) {
    return QStringLiteral(
               "INSERT OR REPLACE INTO permissions (user, element, bits) "
               "SELECT 'u-%1', id, 3 FROM elements")
        .arg(_user);
}

}  // namespace matrix
