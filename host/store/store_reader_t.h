#pragma once

#include <QStringList>

#include "installation/bus_data.h"
#include "installation/installation_t.h"
#include "store/change_batch_t.h"
#include "store/connection_t.h"
#include "store/kind_t.h"

namespace database::store {

/// Reads rows into values. To be used inside a transaction, so that they are of one state. What
/// the rule of names refuses stays out, whoever wrote it, see installation::tidy_entries().
class store_reader_t {
 public:
    explicit store_reader_t(connection_t& _connection) : connection(_connection) {}

    /// Adds the whole installation to @p _target.
    ::base::result_t read_all(installation::installation_t* _target);
    /// Adds what the bus has to do with items and scenarios, alone.
    ::base::result_t read_buses(installation::installation_t* _target);
    /// Adds the users alone.
    ::base::result_t read_accounts(installation::installation_t* _target);
    /// Adds what the batch's keys stand for; a key that is not in the store any more stays out.
    /// With an element come all its grants.
    ::base::result_t read_batch(const change_batch_t& _batch,
                                installation::installation_t* _target);

    /// Adds these things with all that makes them, also what the bus has to do with them; grants
    /// are not among it, and a name that is not in the store stays out. No users.
    ::base::result_t read_things(kind_t _kind, const QStringList& _ids,
                                 installation::installation_t* _target);

    /// What stayed out or was cleaned, one sentence for each thing, of all reads so far.
    const QStringList& notes() const { return sentences; }

 private:
    /// Restricts a read to the row or rows of one key; none: all rows.
    struct filter_t {
        const char* where = "";
        QVariantList values;
    };

    ::base::result_t read_thing(kind_t _kind, const QString& _id,
                                installation::installation_t* _target);
    ::base::result_t read_bus_column(const char* _table, installation::bus_role_t _role,
                                     const filter_t& _filter,
                                     QMap<QString, bus::bus_data_t>* _target);
    ::base::result_t read_topic(installation::installation_t* _target);
    ::base::result_t read_items(const filter_t& _filter, installation::installation_t* _target);
    ::base::result_t read_scenarios(const filter_t& _filter, installation::installation_t* _target);
    ::base::result_t read_thermostats(const filter_t& _filter,
                                      installation::installation_t* _target);
    ::base::result_t read_thermostat_ids(const filter_t& _filter,
                                         installation::installation_t* _target);
    ::base::result_t read_elements(const filter_t& _filter, installation::installation_t* _target);
    ::base::result_t read_functions(const filter_t& _filter, installation::installation_t* _target);
    ::base::result_t read_users(const filter_t& _filter, installation::installation_t* _target);
    ::base::result_t read_permissions(const filter_t& _filter,
                                      installation::installation_t* _target);

    /// Whether the first column is a text, as the names of rows are.
    bool is_named(const char* _table, const QSqlQuery& _row);
    void tidy(installation::installation_t* _target);
    void note(const QStringList& _what);

    connection_t& connection;
    QStringList sentences;
};

}  // namespace database::store
