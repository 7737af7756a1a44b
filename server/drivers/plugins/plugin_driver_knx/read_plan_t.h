#pragma once

#include <QList>
#include <QSet>
#include <deque>
#include <optional>

#include "knx/group_address_t.h"

namespace knx {

/// Addresses that are still to be asked, each once.
class read_plan_t {
 public:
    /// Begins anew.
    void start(const QList<group_address_t>& _addresses);

    /// Besides what is to be asked already: what _addresses has and _former has not.
    void add(const QList<group_address_t>& _addresses, const QList<group_address_t>& _former);

    /// The value has come: there is nothing to ask.
    void answered(group_address_t _address) { open.remove(_address); }

    /// The next one that is still to be asked.
    std::optional<group_address_t> take();

    /// All that are still to be asked.
    QList<group_address_t> left() const;

    bool is_open(group_address_t _address) const { return open.contains(_address); }

    bool is_empty() const { return open.isEmpty(); }

 private:
    std::deque<group_address_t> order;
    QSet<group_address_t> open;
};

}  // namespace knx
