#include "drivers/plugins/plugin_driver_knx/read_plan_t.h"

namespace knx {

void read_plan_t::start(const QList<group_address_t>& _addresses) {
    order.assign(_addresses.begin(), _addresses.end());
    open = QSet<group_address_t>(_addresses.begin(), _addresses.end());
}

void read_plan_t::add(const QList<group_address_t>& _addresses,
                      const QList<group_address_t>& _former) {
    const QSet<group_address_t> former(_former.begin(), _former.end());
    for (const group_address_t address : _addresses) {
        if (!former.contains(address) && !open.contains(address)) {
            order.push_back(address);
            open.insert(address);
        }
    }
}

std::optional<group_address_t> read_plan_t::take() {
    while (!order.empty()) {
        const group_address_t address = order.front();
        order.pop_front();
        if (open.remove(address)) {
            return address;
        }
    }
    return std::nullopt;
}

QList<group_address_t> read_plan_t::left() const {
    QList<group_address_t> addresses;
    for (const group_address_t address : order) {
        if (open.contains(address)) {
            addresses.append(address);
        }
    }
    return addresses;
}

}  // namespace knx
