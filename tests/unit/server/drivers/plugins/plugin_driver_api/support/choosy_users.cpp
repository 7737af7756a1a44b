#include "unit/server/drivers/plugins/plugin_driver_api/support/choosy_users.h"

#include <utility>

#include "database/persistent/dbs/ps_users_t.h"

namespace {

QStringList questions;

}  // namespace

namespace kit {

QStringList take_user_questions() {
    return std::exchange(questions, {});
}

}  // namespace kit

// The program's own definitions stand before those of any library.
namespace database::persistent::dbs {

namespace {

bool uses(const QString& _id, const QString& _version) {
    return (_version == u"v2") == _id.startsWith(u"v2-");
}

QStringList ids_of(const ps_users_t& _users, bool _enabled) {
    QStringList ids = _users.getObjects().keys();
    if (_enabled) {
        ids.removeIf([](const QString& id) { return id.startsWith(u"barred-"); });
    }
    return ids;
}

QStringList names_of(const ps_users_t& _users, const QStringList& _ids) {
    QStringList names;
    for (const QString& id : _ids) {
        names.append(_users.list(id)->getUsername());
    }
    return names;
}

}  // namespace

QStringList ps_users_t::getUsersAPI(bool _enabled) const {
    questions.append(QStringLiteral("ids %1").arg(_enabled));
    return ids_of(*this, _enabled);
}

QStringList ps_users_t::getUsernamesAPI(bool _enabled) const {
    questions.append(QStringLiteral("names %1").arg(_enabled));
    return names_of(*this, ids_of(*this, _enabled));
}

QStringList ps_users_t::getUsernamesAPI(const QString& _version, bool _enabled) const {
    questions.append(QStringLiteral("names %1 %2").arg(_version).arg(_enabled));
    QStringList ids = ids_of(*this, _enabled);
    ids.removeIf([&_version](const QString& id) { return !uses(id, _version); });
    return names_of(*this, ids);
}

}  // namespace database::persistent::dbs
