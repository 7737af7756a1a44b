// What model_t finds out about the objects in memory and about what changed of them.
#include <algorithm>
#include <iterator>

#include "database/persistent/objects/psoe_scenario.h"
#include "database/persistent/objects/psoe_thermo_logic.h"
#include "live/item_references.h"
#include "live/model_t.h"

namespace database::live {

using installation::installation_t;
namespace objects = persistent::objects;

namespace {

/// Whether the element in memory is the one of the store.
bool is_equal(const objects::ps_object_element_t& _known, const installation::element_t& _from) {
    const auto* scenario = qobject_cast<const objects::psoe_scenario*>(&_known);
    const auto* thermostat = qobject_cast<const objects::psoe_thermo_logic*>(&_known);
    return _known.getName() == _from.name && _known.getType() == _from.type &&
           _known.getFlags() == _from.flags &&
           _known.getFunction_map() == item_references(_from.functions) &&
           (scenario == nullptr || scenario->getScenario_id() == _from.scenario) &&
           (thermostat == nullptr || thermostat->getThermoId() == _from.thermostat);
}

}  // namespace

model_t::names_t model_t::usernames() const {
    names_t names;
    const auto users = database->getPersistent()->getData()->getUsers()->getObjects();
    for (auto user = users.begin(); user != users.end(); ++user) {
        names.insert((*user)->getUsername(), user.key());
    }
    return names;
}

void model_t::tell_names(const names_t& _before, model_changes_t* _changes) const {
    const names_t now = usernames();
    for (auto name = _before.begin(); name != _before.end(); ++name) {
        if (now.value(name.key()) != *name) {
            _changes->gone_names.insert(name.key());
        }
    }
    for (auto name = now.begin(); name != now.end(); ++name) {
        if (_before.value(name.key()) != *name) {
            _changes->come_names.insert(name.key());
        }
    }
}

std::set<QString> model_t::equal_elements(const store::change_batch_t& _batch,
                                          const installation_t& _part) const {
    std::set<QString> equal;
    for (const QString& id : _batch.elements) {
        const element_t* known = database->getPersistent()->getData()->getElements()->list(id);
        const auto from = _part.elements.constFind(id);
        if (known != nullptr && from != _part.elements.constEnd() && is_equal(*known, *from)) {
            equal.insert(id);
        }
    }
    return equal;
}

void model_t::tell_rights_only(const std::set<QString>& _equal, model_changes_t* _changes) const {
    std::set<QString> touched;
    std::set<QString> others =
        elements_of({_changes->thermostats.begin(), _changes->thermostats.end()});
    for (const grant_change_t& grant : std::as_const(_changes->grants)) {
        touched.insert(grant.element);
        if (_changes->gone_names.count(grant.username) +
                _changes->come_names.count(grant.username) ==
            0) {
            others.insert(grant.element);
        }
    }
    std::set_intersection(_equal.begin(), _equal.end(), touched.begin(), touched.end(),
                          std::inserter(_changes->rights_only, _changes->rights_only.end()));
    std::erase_if(_changes->rights_only,
                  [&others](const QString& _id) { return others.count(_id) > 0; });
}

std::set<QString> model_t::elements_of(const std::set<QString>& _thermostats) const {
    std::set<QString> ids;
    if (_thermostats.empty()) {
        return ids;
    }
    const auto elements = database->getPersistent()->getData()->getElements()->getObjects();
    for (auto i = elements.begin(); i != elements.end(); ++i) {
        const auto* element = qobject_cast<const objects::psoe_thermo_logic*>(i.value());
        if (element != nullptr && _thermostats.count(element->getThermoId()) > 0) {
            ids.insert(i.key());
        }
    }
    return ids;
}

}  // namespace database::live
