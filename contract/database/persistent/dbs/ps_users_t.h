#pragma once

#include <QStringList>

#include "database/persistent/objects/ps_object_user_api_t.h"
#include "database/table_t.h"

namespace database::persistent::dbs {

/// The API users, by user id. In id order.
class ps_users_t : public table_t<objects::ps_object_user_api_t> {
 public:
    /// Ids of the API users. @p _enabled true: only those that may sign in; every user here may.
    QStringList getUsersAPI(bool _enabled) const;
    /// Names of the API users, in the order of getUsersAPI().
    QStringList getUsernamesAPI(bool _enabled) const;
    /// Names of the users of one API version; every user may use every version.
    QStringList getUsernamesAPI(const QString& _version, bool _enabled) const;
};

}  // namespace database::persistent::dbs
