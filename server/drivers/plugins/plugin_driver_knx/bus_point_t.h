#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

#include "base/result_t.h"
#include "bus/bus_data_t.h"
#include "knx/data_point_type_t.h"
#include "knx/telegram_t.h"

namespace knx {

/// The value of a telegram.
struct payload_t {
    QByteArray data;
    bool is_short = false;
};

/// An item or a scenario as the bus sees it.
struct bus_point_t {
    QString id;
    QString dpt;
    const data_point_type_t* type = nullptr;  ///< null: not in the table, values are hexadecimal
    std::optional<group_address_t> write;
    QList<group_address_t> heard;
    bool read = false;
    bool answer = false;
    int scene = 0;  ///< 0: an item

    /// @p _data as the installation has it: what is no address is left out.
    static bus_point_t from_data(const QString& _id, const bus::bus_data_t& _data);

    bool is_scenario() const { return scene > 0; }

    /// Whether a newer value may take the place of one that waits: states, not steps and triggers.
    bool is_state() const;

    /// A failure's sentence names the item, the address and the value.
    base::result_of_t<payload_t> encode(const QString& _value) const;
    base::result_of_t<QString> decode(const telegram_t& _telegram) const;
};

}  // namespace knx
