#pragma once

#include "installation/installation_t.h"
#include "store/connection_t.h"
#include "store/kind_t.h"

namespace database::store {

/// Writes one thing as rows, which is new or there already. Inside a writing transaction. What the
/// installation reports, values and executions, it writes of new ones only: a server that runs may
/// hold newer ones that it has not saved yet.
class thing_writer_t {
 public:
    explicit thing_writer_t(connection_t& _connection) : connection(_connection) {}

    enum class row_t { is_new, is_there };

    /// @param _thing holds it
    ::base::result_t write(kind_t _kind, const QString& _id,
                           const installation::installation_t& _thing, row_t _row);

 private:
    ::base::result_t write_element(const QString& _id, const installation::element_t& _element,
                                   row_t _row);
    ::base::result_t write_item(const QString& _id, const installation::installation_t& _thing,
                                row_t _row);
    ::base::result_t write_scenario(const QString& _id, const installation::installation_t& _thing,
                                    row_t _row);
    ::base::result_t write_thermostat(const QString& _id,
                                      const installation::thermostat_t& _thermostat, row_t _row);
    ::base::result_t write_connections(const char* _table, const char* _owner, const char* _name,
                                       const QString& _id, const QMap<QString, QString>& _items);

    connection_t& connection;
};

}  // namespace database::store
