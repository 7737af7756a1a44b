#pragma once

#include <QMap>
#include <QString>

#include "bus/bus_data_t.h"
#include "installation/item_limits_t.h"

namespace database::installation {

/// An item of an installation.
struct item_t {
    QString value;
    item_limits_t limits = {};
    bool operator==(const item_t&) const = default;
};

/// A thermostat logic of an installation; item ids, empty: not connected.
struct thermostat_t {
    QMap<QString, QString> ids;  ///< thermostat key -> item id; null string: not connected
    QString id_actual;
    QString id_windows_contact;
    bool operator==(const thermostat_t&) const = default;
};

/// An element of an installation.
struct element_t {
    QString name;
    int type = -1;
    qint32 flags = 0;
    QMap<QString, QString> functions;  ///< function name -> item id; null string: not connected
    QString scenario;                  ///< scenario id, empty: none
    QString thermostat;                ///< thermostat id, empty: none
    bool operator==(const element_t&) const = default;
};

/// An API user of an installation.
struct user_t {
    QString username;
    QString password_hash;  ///< "$7$<iterations>$<salt>$<hash>", as the broker reads it
    bool operator==(const user_t&) const = default;
};

/// A whole installation as a value: what one import writes and one export reads.
/// Permission bits: 1 read, 2 write; a grant that is not there is a denial.
struct installation_t {
    QString topic;                                  ///< e.g. "installation/0001"; empty: none
    QMap<QString, item_t> items;                    ///< by item id
    QMap<QString, bool> scenarios;                  ///< scenario id -> executed
    QMap<QString, thermostat_t> thermostats;        ///< by thermostat id
    QMap<QString, element_t> elements;              ///< by element id
    QMap<QString, user_t> users;                    ///< by user id
    QMap<QString, QMap<QString, int>> permissions;  ///< user id -> element id -> bits
    QMap<QString, bus::bus_data_t> item_buses;      ///< by item id; of those that have it
    QMap<QString, bus::bus_data_t> scenario_buses;  ///< by scenario id; the same
    bool operator==(const installation_t&) const = default;
};

}  // namespace database::installation
