#include "ets/identifiers_t.h"

#include "database/name_rules.h"
#include "knx/group_address_t.h"

namespace ets {

QString identifiers_t::of_address(quint16 _raw) {
    return knx::group_address_t(_raw).text().replace(u'/', u'-');
}

QString identifiers_t::take(const QString& _kind, quint16 _raw, const QString& _distinction) {
    const QString plain = _kind + u'-' + of_address(_raw);
    QString id = plain;
    const QString distinct = plain + u'-' + _distinction;
    // The distinction comes from a file that says what it likes.
    if (taken.contains(id) && !_distinction.isEmpty() &&
        database::identifier_error(distinct).isEmpty()) {
        id = distinct;
    }
    for (int number = 2; taken.contains(id); ++number) {
        id = plain + QStringLiteral("-n") + QString::number(number);
    }
    taken.insert(id);
    return id;
}

}  // namespace ets
