#pragma once

#include <QJsonObject>
#include <QStringList>

#include "bus/bus_data_t.h"

/// The "knx" of an item or a scenario, in documents and in the database alike.
namespace database::installation {

enum class bus_role_t { item, scenario };

/// The data, or what is wrong with it and where inside the object.
struct read_bus_data_t {
    bus::bus_data_t data = {};
    QStringList place = {};
    QString error = {};  ///< empty: nothing

    bool is_ok() const { return error.isEmpty(); }
};

/// Checks everything: keys, kinds, addresses, the type, the scene.
read_bus_data_t read_bus_data(const QJsonValue& _json, bus_role_t _role);

/// What read_bus_data() takes; what it would say by itself is left out.
QJsonObject write_bus_data(const bus::bus_data_t& _data, bus_role_t _role);

}  // namespace database::installation
