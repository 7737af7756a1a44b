#include "live/item_elements.h"

#include <set>

#include "database/persistent/objects/psoe_thermo_logic.h"

namespace database::live {

namespace {

namespace objects = persistent::objects;

std::set<QString> items_of(const objects::ps_object_thermostat_t& _thermostat) {
    std::set<QString> items{_thermostat.getThermo()->getIdActual(),
                            _thermostat.getIdWindowsContact()};
    for (const QVariant& id : _thermostat.getThermo()->getIds()) {
        items.insert(id.toString());
    }
    return items;
}

std::set<QString> items_of(const persistent::ps_data_t& _data,
                           const objects::ps_object_element_t& _element) {
    std::set<QString> items;
    for (const QVariant& id : _element.getFunction_map()) {
        items.insert(id.toString());
    }
    if (const auto* logic = qobject_cast<const objects::psoe_thermo_logic*>(&_element)) {
        if (const auto* thermostat = _data.getThermo()->list(logic->getThermoId())) {
            items.merge(items_of(*thermostat));
        }
    }
    return items;
}

}  // namespace

QHash<QString, QStringList> elements_by_item(const database_t& _database,
                                             const QStringList& _items) {
    const std::set<QString> wanted(_items.begin(), _items.end());
    const persistent::ps_data_t& data = *_database.getPersistent()->getData();
    QHash<QString, QStringList> elements;
    const auto objects = data.getElements()->getObjects();
    for (auto element = objects.begin(); element != objects.end(); ++element) {
        for (const QString& item : items_of(data, **element)) {
            if (wanted.count(item) > 0) {
                elements[item].append(element.key());
            }
        }
    }
    return elements;
}

}  // namespace database::live
