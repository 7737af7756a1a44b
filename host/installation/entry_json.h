#pragma once

#include <QJsonObject>

#include "installation/installation_t.h"

/// Single entries as a document has them; what one would say by itself is left out. An item's and a
/// scenario's "knx" is write_bus_data()'s.
namespace database::installation {

QJsonObject item_json(const item_t& _item);
QJsonObject scenario_json(bool _execution);
QJsonObject thermostat_json(const thermostat_t& _thermostat);
QJsonObject element_json(const element_t& _element);

}  // namespace database::installation
