#pragma once

#include <QHash>

#include "database/persistent/dbs/ps_elements_t.h"
#include "database/persistent/dbs/ps_items_t.h"
#include "database/persistent/dbs/ps_scenary_t.h"
#include "database/persistent/dbs/ps_thermo_t.h"
#include "database/persistent/dbs/ps_users_t.h"

namespace database::live {
class table_writer_t;
}

namespace database::persistent {

/// The persistent tables and the grants between users and elements. Host thread only.
class ps_data_t {
 public:
    const dbs::ps_elements_t* getElements() const { return &elements; }
    const dbs::ps_items_t* getItems() const { return &items; }
    const dbs::ps_scenary_t* getScenary() const { return &scenary; }
    const dbs::ps_thermo_t* getThermo() const { return &thermo; }
    const dbs::ps_users_t* getUsers() const { return &users; }

    /// Permission bits of a user on an element: 1 read, 2 write; 0 none.
    int check_permission_element_by_userid(const QString& _id_element, const QString& _user_id,
                                           objects::ps_object_user_t::PermissionFlag _flag) const;

 private:
    friend class live::table_writer_t;

    /// Sets the bits of one grant; 0 takes it out.
    void setPermission(const QString& _id_element, const QString& _user_id, int _bits);

    dbs::ps_elements_t elements;
    dbs::ps_items_t items;
    dbs::ps_scenary_t scenary;
    dbs::ps_thermo_t thermo;
    dbs::ps_users_t users;
    QHash<QString, QHash<QString, int>> permissions;  ///< user id -> element id -> bits
};

}  // namespace database::persistent
