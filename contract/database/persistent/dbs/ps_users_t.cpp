#include "database/persistent/dbs/ps_users_t.h"

namespace database::persistent::dbs {

QStringList ps_users_t::getUsersAPI(bool) const {
    return getObjects().keys();
}

QStringList ps_users_t::getUsernamesAPI(bool) const {
    QStringList names;
    const QMap<QString, objects::ps_object_user_api_t*> users = getObjects();
    for (const objects::ps_object_user_api_t* user : users) {
        names.append(user->getUsername());
    }
    return names;
}

QStringList ps_users_t::getUsernamesAPI(const QString&, bool _enabled) const {
    return getUsernamesAPI(_enabled);
}

}  // namespace database::persistent::dbs
