#include "live/shown_states.h"

#include <algorithm>

#include "database/permission.h"

namespace database::live {

namespace {

using installation::installation_t;
using persistent::objects::ps_object_user_t;

bool is_shown(const database_t& _database, const QString& _element, const QString& _user) {
    const auto* data = _database.getPersistent()->getData();
    return data->getElements()->list(_element) != nullptr &&
           (data->check_permission_element_by_userid(_element, _user,
                                                     ps_object_user_t::PermissionFlag::element) &
            permission::read_bit) != 0;
}

/// User ids by name.
QHash<QString, QString> names_of(const installation_t& _installation) {
    QHash<QString, QString> ids;
    for (auto user = _installation.users.begin(); user != _installation.users.end(); ++user) {
        ids.insert(user->username, user.key());
    }
    return ids;
}

}  // namespace

QList<shown_state_t> shown_states(const database_t& _database, const std::set<QString>& _elements,
                                  const std::set<QString>& _users) {
    const auto* data = _database.getPersistent()->getData();
    const auto users = data->getUsers()->getObjects();
    const auto elements = data->getElements()->getObjects();
    QList<shown_state_t> shown;
    for (auto user = users.begin(); user != users.end(); ++user) {
        const QString name = (*user)->getUsername();
        const auto look_at = [&](const QString& _element) {
            if (is_shown(_database, _element, user.key())) {
                shown.append({name, _element});
            }
        };
        if (_users.count(user.key()) > 0) {
            std::for_each(elements.keyBegin(), elements.keyEnd(), look_at);
        } else {
            std::for_each(_elements.begin(), _elements.end(), look_at);
        }
    }
    return shown;
}

QList<shown_state_t> not_shown(const database_t& _database, QList<shown_state_t> _states) {
    QHash<QString, QString> ids;
    const auto users = _database.getPersistent()->getData()->getUsers()->getObjects();
    for (auto user = users.begin(); user != users.end(); ++user) {
        ids.insert((*user)->getUsername(), user.key());
    }
    _states.removeIf([&](const shown_state_t& _state) {
        const auto id = ids.constFind(_state.username);
        return id != ids.constEnd() && is_shown(_database, _state.element, *id);
    });
    std::sort(_states.begin(), _states.end());
    return _states;
}

bool is_shown(const database_t& _database, const shown_state_t& _state) {
    const auto users = _database.getPersistent()->getData()->getUsers()->getObjects();
    for (auto user = users.begin(); user != users.end(); ++user) {
        if ((*user)->getUsername() == _state.username) {
            return is_shown(_database, _state.element, user.key());
        }
    }
    return false;
}

QList<shown_state_t> hidden_by(const database_t& _database, const installation_t& _next) {
    const auto* data = _database.getPersistent()->getData();
    const auto users = data->getUsers()->getObjects();
    const QStringList elements = data->getElements()->getObjects().keys();
    const QHash<QString, QString> next_ids = names_of(_next);
    QList<shown_state_t> hidden;
    for (auto user = users.begin(); user != users.end(); ++user) {
        const QString name = (*user)->getUsername();
        const QMap<QString, int> next = _next.permissions.value(next_ids.value(name));
        for (const QString& element : elements) {
            const bool stays = (next.value(element) & permission::read_bit) != 0 &&
                               _next.elements.contains(element);
            if (!stays && is_shown(_database, element, user.key())) {
                hidden.append({name, element});
            }
        }
    }
    return hidden;
}

}  // namespace database::live
