#include "database/persistent/ps_data_t.h"

namespace database::persistent {

int ps_data_t::check_permission_element_by_userid(
    const QString& _id_element, const QString& _user_id,
    objects::ps_object_user_t::PermissionFlag _flag) const {
    if (_flag != objects::ps_object_user_t::PermissionFlag::element) {
        return 0;
    }
    const auto user = permissions.constFind(_user_id);
    return user == permissions.constEnd() ? 0 : user->value(_id_element, 0);
}

void ps_data_t::setPermission(const QString& _id_element, const QString& _user_id, int _bits) {
    if (_bits != 0) {
        permissions[_user_id].insert(_id_element, _bits);
        return;
    }
    const auto user = permissions.find(_user_id);
    if (user != permissions.end() && user->remove(_id_element) && user->isEmpty()) {
        permissions.erase(user);
    }
}

}  // namespace database::persistent
