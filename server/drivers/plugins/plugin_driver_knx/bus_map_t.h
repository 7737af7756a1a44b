#pragma once

#include <QHash>
#include <QMap>

#include "drivers/plugins/plugin_driver_knx/bus_point_t.h"

namespace knx {

/// Which items and scenarios have to do with which address.
class bus_map_t {
 public:
    bus_map_t() = default;
    bus_map_t(const QMap<QString, bus::bus_data_t>& _items,
              const QMap<QString, bus::bus_data_t>& _scenarios);

    /// Null: it has no bus data. Pointers live as long as the map is not replaced.
    const bus_point_t* item(const QString& _id) const { return find(items, _id); }
    const bus_point_t* scenario(const QString& _id) const { return find(scenarios, _id); }

    /// Items and scenarios that a telegram sets, in id order.
    QList<const bus_point_t*> listeners(group_address_t _address) const {
        return by_address.value(_address);
    }

    /// These or, where nobody listens, those whose values go to the address.
    QList<const bus_point_t*> points_at(group_address_t _address) const;

    /// The item that answers questions for the address; null: none.
    const bus_point_t* answerer(group_address_t _address) const;

    /// What is to be asked when the link is there, each address once, in address order.
    QList<group_address_t> questions() const;

 private:
    using points_t = QMap<QString, bus_point_t>;

    static const bus_point_t* find(const points_t& _points, const QString& _id);
    void add(const points_t& _points);

    points_t items;
    points_t scenarios;
    QHash<group_address_t, QList<const bus_point_t*>> by_address;
    QHash<group_address_t, QList<const bus_point_t*>> by_write;
};

}  // namespace knx
