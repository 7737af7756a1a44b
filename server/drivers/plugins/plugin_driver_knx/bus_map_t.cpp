#include "drivers/plugins/plugin_driver_knx/bus_map_t.h"

#include <algorithm>
#include <set>

namespace knx {

bus_map_t::bus_map_t(const QMap<QString, bus::bus_data_t>& _items,
                     const QMap<QString, bus::bus_data_t>& _scenarios) {
    const auto fill = [](const QMap<QString, bus::bus_data_t>& _from, points_t* _to) {
        for (auto it = _from.begin(); it != _from.end(); ++it) {
            _to->insert(it.key(), bus_point_t::from_data(it.key(), it.value()));
        }
    };
    fill(_items, &items);
    fill(_scenarios, &scenarios);
    add(items);
    add(scenarios);
}

const bus_point_t* bus_map_t::find(const points_t& _points, const QString& _id) {
    const auto found = _points.constFind(_id);
    return found == _points.constEnd() ? nullptr : &*found;
}

void bus_map_t::add(const points_t& _points) {
    for (auto it = _points.constBegin(); it != _points.constEnd(); ++it) {
        for (const group_address_t address : it->heard) {
            by_address[address].append(&*it);
        }
        if (it->write) {
            by_write[*it->write].append(&*it);
        }
    }
}

QList<const bus_point_t*> bus_map_t::points_at(group_address_t _address) const {
    const QList<const bus_point_t*> heard = listeners(_address);
    return heard.isEmpty() ? by_write.value(_address) : heard;
}

const bus_point_t* bus_map_t::answerer(group_address_t _address) const {
    const QList<const bus_point_t*> points = listeners(_address);
    const auto found = std::find_if(points.begin(), points.end(),
                                    [](const bus_point_t* _point) { return _point->answer; });
    return found == points.end() ? nullptr : *found;
}

QList<group_address_t> bus_map_t::questions() const {
    std::set<group_address_t> addresses;
    for (const bus_point_t& point : items) {
        if (point.read && !point.heard.isEmpty()) {
            addresses.insert(point.heard.constFirst());
        }
    }
    return QList<group_address_t>(addresses.begin(), addresses.end());
}

}  // namespace knx
