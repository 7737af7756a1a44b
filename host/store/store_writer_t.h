#pragma once

#include <QVariant>

#include "installation/bus_data.h"
#include "installation/installation_t.h"
#include "store/connection_t.h"

namespace database::store {

/// Writes a whole installation as rows of the tables that store_difference_t begins with.
class store_writer_t {
 public:
    explicit store_writer_t(connection_t& _connection) : connection(_connection) {}

    ::base::result_t write(const installation::installation_t& _installation);

 private:
    ::base::result_t write_items(const installation::installation_t& _installation);
    ::base::result_t write_scenarios(const installation::installation_t& _installation);
    ::base::result_t write_thermostats(const installation::installation_t& _installation);
    ::base::result_t write_elements(const installation::installation_t& _installation);
    ::base::result_t write_users(const installation::installation_t& _installation);
    ::base::result_t write_permissions(const installation::installation_t& _installation);

    connection_t& connection;
};

/// A text for a column that must not be NULL: Qt binds a null string as NULL.
inline QVariant text_value(const QString& _text) {
    return _text.isNull() ? QStringLiteral("") : _text;
}

/// What the bus has to do with an item or a scenario, as its column has it; NULL: nothing.
QVariant bus_value(const QMap<QString, bus::bus_data_t>& _buses, const QString& _id,
                   installation::bus_role_t _role);

inline QVariant limit_value(const std::optional<double>& _limit) {
    return _limit ? QVariant(*_limit) : QVariant();
}

/// A reference for a column that may be NULL: an empty one is none.
inline QVariant reference_value(const QString& _id) {
    return _id.isEmpty() ? QVariant() : _id;
}

}  // namespace database::store
