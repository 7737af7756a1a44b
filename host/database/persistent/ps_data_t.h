#pragma once

#include <QHash>

#include "database/persistent/dbs/ps_elements_t.h"
#include "database/persistent/dbs/ps_items_t.h"
#include "database/persistent/dbs/ps_scenary_t.h"
#include "database/persistent/dbs/ps_thermo_t.h"
#include "database/persistent/dbs/ps_users_t.h"

namespace database::persistent {

/// The persistent tables and the grants between users and elements. Host thread only.
class ps_data_t {
 public:
    dbs::ps_elements_t* getElements() const { return &elements; }
    dbs::ps_items_t* getItems() const { return &items; }
    dbs::ps_scenary_t* getScenary() const { return &scenary; }
    dbs::ps_thermo_t* getThermo() const { return &thermo; }
    dbs::ps_users_t* getUsers() const { return &users; }

    /// Permission bits of a user on an element: 1 read, 2 write; 0 none.
    int check_permission_element_by_userid(const QString& _id_element, const QString& _user_id,
                                           objects::ps_object_user_t::PermissionFlag _flag) const;

    /// Sets the bits of one grant; 0 takes it out (host only).
    void setPermission(const QString& _id_element, const QString& _user_id, int _bits);
    /// Takes all grants out (host only).
    void clearPermissions() { permissions.clear(); }

 private:
    // The accessors are const because drivers hold the data object read-only; the tables
    // themselves are the host's to change.
    mutable dbs::ps_elements_t elements;
    mutable dbs::ps_items_t items;
    mutable dbs::ps_scenary_t scenary;
    mutable dbs::ps_thermo_t thermo;
    mutable dbs::ps_users_t users;
    QHash<QString, QHash<QString, int>> permissions;  ///< user id -> element id -> bits
};

}  // namespace database::persistent
