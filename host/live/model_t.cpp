#include "live/model_t.h"

#include <algorithm>
#include <iterator>

#include "database/element_type.h"
#include "database/permission.h"
#include "database/persistent/objects/psoe_scenario.h"
#include "database/persistent/objects/psoe_thermo_logic.h"
#include "live/grant_changes.h"
#include "live/item_references.h"
#include "live/shown_states.h"
#include "live/table_writer_t.h"

namespace database::live {

using installation::installation_t;
namespace objects = persistent::objects;

namespace {

std::unique_ptr<objects::ps_object_element_t> make_element(const installation::element_t& _from) {
    objects::ps_element_data_t data{_from.name, _from.type, _from.flags,
                                    item_references(_from.functions)};
    if (_from.type == element_type::scenario) {
        return std::make_unique<objects::psoe_scenario>(std::move(data), _from.scenario);
    }
    if (_from.type == element_type::thermostat) {
        return std::make_unique<objects::psoe_thermo_logic>(std::move(data), _from.thermostat);
    }
    return std::make_unique<objects::ps_object_element_t>(std::move(data));
}

QStringList to_list(const std::set<QString>& _ids) {
    return QStringList(_ids.begin(), _ids.end());
}

}  // namespace

model_t::model_t(database_t* _database, realtime_writer_t* _realtime, write_gate_t* _gate)
    : database(_database), realtime(_realtime), gate(_gate) {}

model_changes_t model_t::fill(const installation_t& _installation, bool _withholds) {
    model_changes_t changes;
    changes.everything = true;
    const auto known = database->getPersistent()->getData()->getElements()->getObjects();
    std::set<QString> ids(known.keyBegin(), known.keyEnd());
    ids.insert(_installation.elements.keyBegin(), _installation.elements.keyEnd());
    changes.elements = to_list(ids);
    const names_t names = usernames();
    withheld.clear();
    withholding = _withholds;
    changes.hidden = hidden_by(*database, _installation);
    changes.grants = grant_changes(*database, _installation);
    table_writer_t(database).clear();
    realtime->clear_unsaved();
    gate->clear();

    store::change_batch_t all;
    all.topic = true;
    all.everything = true;
    const auto insert_keys = [](const auto& _map, std::set<QString>* _keys) {
        for (auto i = _map.keyBegin(); i != _map.keyEnd(); ++i) {
            _keys->insert(_keys->end(), *i);
        }
    };
    insert_keys(_installation.items, &all.items);
    insert_keys(_installation.scenarios, &all.scenarios);
    insert_keys(_installation.thermostats, &all.thermostats);
    insert_keys(_installation.elements, &all.elements);
    insert_keys(_installation.users, &all.users);
    model_changes_t replaced;
    replace(all, _installation, &replaced);
    withholding = false;
    tell_names(names, &changes);
    return changes;
}

void model_t::show(const QString& _id) {
    auto element = withheld.extract(_id);
    if (!element.empty()) {
        table_writer_t(database).put(_id, std::move(element.mapped()));
    }
}

QStringList model_t::withheld_elements() const {
    QStringList ids;
    for (const auto& each : withheld) {
        ids.append(each.first);
    }
    return ids;
}

model_changes_t model_t::apply(const store::change_batch_t& _batch, const installation_t& _part) {
    model_changes_t changes;
    const QList<shown_state_t> before = shown_states(*database, _batch.elements, _batch.users);
    const std::set<QString> equal = equal_elements(_batch, _part);
    const names_t names = _batch.users.empty() ? names_t() : usernames();
    replace(_batch, _part, &changes);
    if (!_batch.users.empty()) {
        tell_names(names, &changes);
        tell_rights_only(equal, &changes);
    }
    changes.hidden = not_shown(*database, before);
    return changes;
}

void model_t::replace(const store::change_batch_t& _batch, const installation_t& _part,
                      model_changes_t* _changes) {
    model_changes_t& changes = *_changes;
    changes.topic = _batch.topic;
    changes.accounts = _batch.accounts;
    if (_batch.topic) {
        table_writer_t(database).set_topic(_part.topic);
    }
    apply_limits(_batch.items, _part);
    apply_limits(_batch.limits, _part);
    changes.items = apply_items(_batch.items, _part);
    changes.scenarios = apply_scenarios(_batch.scenarios, _part);
    apply_thermostats(_batch.thermostats, _part);
    changes.thermostats = to_list(_batch.thermostats);
    apply_elements(_batch.elements, _part);
    if (_batch.everything) {
        put_grants(_part);
    } else {
        apply_grants(_batch.elements, _part, &changes);
    }
    apply_users(_batch.users, _part);
    changes.users = to_list(_batch.users);

    std::set<QString> elements = _batch.elements;
    elements.merge(elements_of(_batch.thermostats));
    changes.elements = to_list(elements);
}

void model_t::apply_limits(const std::set<QString>& _ids, const installation_t& _part) {
    for (const QString& id : _ids) {
        gate->set_limits(id, _part.items.value(id).limits);
    }
}

void model_t::put_item(const QString& _id) {
    table_writer_t(database).put(_id, std::make_unique<objects::ps_object_item_t>(
                                          _id, database->getPersistent()->getRequests()));
}

void model_t::put_scenario(const QString& _id) {
    table_writer_t(database).put(_id, std::make_unique<objects::ps_object_scenary_t>(
                                          _id, database->getPersistent()->getRequests()));
}

QStringList model_t::apply_items(const std::set<QString>& _ids, const installation_t& _part) {
    const persistent::dbs::ps_items_t* items = database->getPersistent()->getData()->getItems();
    QStringList changed;
    for (const QString& id : _ids) {
        const auto item = _part.items.constFind(id);
        if (item == _part.items.constEnd()) {
            table_writer_t(database).remove<objects::ps_object_item_t>(id);
            realtime->forget_item(id);
            changed.append(id);
            continue;
        }
        if (items->list(id) == nullptr) {
            put_item(id);
        }
        if (realtime->take_item(id, item->value)) {
            changed.append(id);
        }
    }
    return changed;
}

QStringList model_t::apply_scenarios(const std::set<QString>& _ids, const installation_t& _part) {
    const persistent::dbs::ps_scenary_t* scenarios =
        database->getPersistent()->getData()->getScenary();
    QStringList changed;
    for (const QString& id : _ids) {
        const auto execution = _part.scenarios.constFind(id);
        if (execution == _part.scenarios.constEnd()) {
            table_writer_t(database).remove<objects::ps_object_scenary_t>(id);
            realtime->forget_scenario(id);
            changed.append(id);
            continue;
        }
        if (scenarios->list(id) == nullptr) {
            put_scenario(id);
        }
        if (realtime->take_scenario(id, *execution)) {
            changed.append(id);
        }
    }
    return changed;
}

void model_t::apply_thermostats(const std::set<QString>& _ids, const installation_t& _part) {
    const table_writer_t tables(database);
    for (const QString& id : _ids) {
        const auto from = _part.thermostats.constFind(id);
        if (from == _part.thermostats.constEnd()) {
            tables.remove<objects::ps_object_thermostat_t>(id);
            continue;
        }
        tables.put(
            id, std::make_unique<objects::ps_object_thermostat_t>(
                    objects::ps_object_thermo_base_t(item_references(from->ids), from->id_actual),
                    from->id_windows_contact));
    }
}

void model_t::apply_elements(const std::set<QString>& _ids, const installation_t& _part) {
    const table_writer_t tables(database);
    for (const QString& id : _ids) {
        const auto from = _part.elements.constFind(id);
        withheld.erase(id);
        if (from == _part.elements.constEnd()) {
            tables.remove<objects::ps_object_element_t>(id);
        } else if (withholding) {
            withheld.emplace(id, make_element(*from));
        } else {
            tables.put(id, make_element(*from));
        }
    }
}

void model_t::put_grants(const installation_t& _whole) {
    const table_writer_t tables(database);
    for (auto user = _whole.permissions.begin(); user != _whole.permissions.end(); ++user) {
        for (auto grant = user->begin(); grant != user->end(); ++grant) {
            tables.set_permission(grant.key(), user.key(), *grant);
        }
    }
}

void model_t::apply_grants(const std::set<QString>& _ids, const installation_t& _part,
                           model_changes_t* _changes) {
    const table_writer_t tables(database);
    const auto bits_of = [this](const QString& _element, const QString& _user) {
        return database->getPersistent()->getData()->check_permission_element_by_userid(
            _element, _user, objects::ps_object_user_t::PermissionFlag::element);
    };
    // The users of before and of now: a user that is gone still has its grants in memory.
    const QStringList before = database->getPersistent()->getData()->getUsers()->getUsersAPI(true);
    std::set<QString> users(before.begin(), before.end());
    users.insert(_part.permissions.keyBegin(), _part.permissions.keyEnd());
    for (const QString& user : users) {
        const QMap<QString, int> grants = _part.permissions.value(user);
        bool is_withdrawn = false;
        for (const QString& id : _ids) {
            const int bits = grants.value(id, 0);
            const int before_bits = bits_of(id, user);
            is_withdrawn = is_withdrawn || ((bits & permission::read_bit) == 0 &&
                                            (before_bits & permission::read_bit) != 0);
            if (bits != before_bits) {
                _changes->grants.append({name_of(user, _part), id, before_bits, bits});
            }
            tables.set_permission(id, user, bits);
        }
        if (is_withdrawn) {
            _changes->withdrawn.append(user);
        }
    }
}

QString model_t::name_of(const QString& _user, const installation_t& _part) const {
    const auto* known = database->getPersistent()->getData()->getUsers()->list(_user);
    const QString name =
        known != nullptr ? known->getUsername() : _part.users.value(_user).username;
    return name.isEmpty() ? _user : name;
}

void model_t::apply_users(const std::set<QString>& _ids, const installation_t& _part) {
    const table_writer_t tables(database);
    for (const QString& id : _ids) {
        const auto from = _part.users.constFind(id);
        if (from == _part.users.constEnd()) {
            tables.remove<objects::ps_object_user_api_t>(id);
        } else {
            tables.put(id, std::make_unique<objects::ps_object_user_api_t>(from->username));
        }
    }
}

}  // namespace database::live
