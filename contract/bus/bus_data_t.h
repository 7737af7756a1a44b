#pragma once

#include <QString>
#include <QStringList>

namespace bus {

/// What an item or a scenario has to do with a KNX bus, as the installation says it and whoever
/// wrote it checked it: addresses in any of the three styles, a data point type like "9.001" or
/// "9".
struct bus_data_t {
    QString dpt;          ///< a scenario's is 17.001 or 18.001
    QString write;        ///< where values are sent to; empty: nowhere
    QStringList status;   ///< whose telegrams set the value; empty: the write address
    bool read = false;    ///< whether the first of them is asked when the bus is there
    bool answer = false;  ///< whether questions of others for the value are answered
    int scene = 0;        ///< of a scenario, 1 to 64

    /// No bus data at all.
    bool is_empty() const { return dpt.isEmpty(); }
    /// The addresses that are listened to.
    QStringList heard() const {
        return status.isEmpty() && !write.isEmpty() ? QStringList{write} : status;
    }
    bool operator==(const bus_data_t&) const = default;
};

}  // namespace bus
