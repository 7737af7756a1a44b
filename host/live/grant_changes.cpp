#include "live/grant_changes.h"

#include <QMap>
#include <set>

namespace database::live {

namespace {

using installation::installation_t;
using persistent::objects::ps_object_user_t;

struct ids_t {
    QString before;
    QString after;
};

/// Of every user, by name; empty: there is none.
QMap<QString, ids_t> user_ids(const database_t& _database, const installation_t& _next) {
    QMap<QString, ids_t> ids;
    const auto users = _database.getPersistent()->getData()->getUsers()->getObjects();
    for (auto user = users.begin(); user != users.end(); ++user) {
        ids[(*user)->getUsername()].before = user.key();
    }
    for (auto user = _next.users.begin(); user != _next.users.end(); ++user) {
        ids[user->username].after = user.key();
    }
    return ids;
}

std::set<QString> element_ids(const database_t& _database, const installation_t& _next) {
    const auto elements = _database.getPersistent()->getData()->getElements()->getObjects();
    std::set<QString> ids(elements.keyBegin(), elements.keyEnd());
    ids.insert(_next.elements.keyBegin(), _next.elements.keyEnd());
    return ids;
}

}  // namespace

QList<grant_change_t> grant_changes(const database_t& _database, const installation_t& _next) {
    const auto* data = _database.getPersistent()->getData();
    const QMap<QString, ids_t> users = user_ids(_database, _next);
    const std::set<QString> elements = element_ids(_database, _next);
    QList<grant_change_t> changes;
    for (auto user = users.begin(); user != users.end(); ++user) {
        const QMap<QString, int> next = _next.permissions.value(user->after);
        for (const QString& element : elements) {
            const int before = data->check_permission_element_by_userid(
                element, user->before, ps_object_user_t::PermissionFlag::element);
            const int after = next.value(element);
            if (before != after && changes.size() < most_grant_changes) {
                changes.append({user.key(), element, before, after});
            }
        }
    }
    return changes;
}

}  // namespace database::live
