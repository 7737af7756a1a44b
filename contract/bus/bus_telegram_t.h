#pragma once

#include <QString>
#include <QStringList>

namespace bus {

/// A telegram that passed on the bus, as people read it.
struct bus_telegram_t {
    enum class kind_t { write, response, read };

    kind_t kind = kind_t::write;
    QString source;   ///< the device, "1.1.5"; empty: the driver itself
    QString address;  ///< "1/2/3"
    QString dpt;      ///< of the items; empty: nothing is known of the address
    QString value;    ///< by the type, else its bytes in hexadecimal; of a read: empty
    QStringList ids;  ///< items and scenarios that have to do with the address

    bool operator==(const bus_telegram_t&) const = default;
};

}  // namespace bus
