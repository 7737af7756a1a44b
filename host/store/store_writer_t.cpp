#include "store/store_writer_t.h"

#include "base/json_text.h"
#include "installation/bus_data.h"

namespace database::store {

using ::base::result_t;
using installation::installation_t;

using installation::bus_role_t;

QVariant bus_value(const QMap<QString, bus::bus_data_t>& _buses, const QString& _id,
                   bus_role_t _role) {
    const auto found = _buses.constFind(_id);
    return found == _buses.constEnd() ? QVariant()
                                      : QVariant(QString::fromUtf8(::base::json_to_text(
                                            installation::write_bus_data(*found, _role))));
}

result_t store_writer_t::write(const installation_t& _installation) {
    for (const auto write : {&store_writer_t::write_items, &store_writer_t::write_scenarios,
                             &store_writer_t::write_thermostats, &store_writer_t::write_elements,
                             &store_writer_t::write_users, &store_writer_t::write_permissions}) {
        const result_t result = (this->*write)(_installation);
        if (!result.is_ok()) {
            return result;
        }
    }
    return {};
}

result_t store_writer_t::write_items(const installation_t& _installation) {
    result_t result;
    for (auto i = _installation.items.begin(); result.is_ok() && i != _installation.items.end();
         ++i) {
        result = connection.run(
            QStringLiteral("INSERT INTO next_items (id, value, writable, min, max, step, knx) "
                           "VALUES (?, ?, ?, ?, ?, ?, ?)"),
            {text_value(i.key()), text_value(i->value), int(i->limits.writable),
             limit_value(i->limits.min), limit_value(i->limits.max), limit_value(i->limits.step),
             bus_value(_installation.item_buses, i.key(), bus_role_t::item)});
    }
    return result;
}

result_t store_writer_t::write_scenarios(const installation_t& _installation) {
    const auto& scenarios = _installation.scenarios;
    result_t result;
    for (auto i = scenarios.begin(); result.is_ok() && i != scenarios.end(); ++i) {
        result = connection.run(
            QStringLiteral("INSERT INTO next_scenarios (id, execution, knx) VALUES (?, ?, ?)"),
            {text_value(i.key()), int(i.value()),
             bus_value(_installation.scenario_buses, i.key(), bus_role_t::scenario)});
    }
    return result;
}

result_t store_writer_t::write_thermostats(const installation_t& _installation) {
    const auto& thermostats = _installation.thermostats;
    result_t result;
    for (auto i = thermostats.begin(); result.is_ok() && i != thermostats.end(); ++i) {
        result = connection.run(
            QStringLiteral("INSERT INTO next_thermostats (id, id_actual, id_windows_contact) "
                           "VALUES (?, ?, ?)"),
            {text_value(i.key()), reference_value(i->id_actual),
             reference_value(i->id_windows_contact)});
        for (auto id = i->ids.begin(); result.is_ok() && id != i->ids.end(); ++id) {
            result = connection.run(
                QStringLiteral("INSERT INTO next_thermostat_ids (thermostat, key, item) "
                               "VALUES (?, ?, ?)"),
                {i.key(), text_value(id.key()), reference_value(id.value())});
        }
    }
    return result;
}

result_t store_writer_t::write_elements(const installation_t& _installation) {
    const auto& elements = _installation.elements;
    result_t result;
    for (auto i = elements.begin(); result.is_ok() && i != elements.end(); ++i) {
        result = connection.run(
            QStringLiteral(
                "INSERT INTO next_elements (id, name, type, flags, scenario, thermostat) "
                "VALUES (?, ?, ?, ?, ?, ?)"),
            {text_value(i.key()), text_value(i->name), i->type, i->flags,
             reference_value(i->scenario), reference_value(i->thermostat)});
        for (auto f = i->functions.begin(); result.is_ok() && f != i->functions.end(); ++f) {
            result = connection.run(
                QStringLiteral("INSERT INTO next_functions (element, name, item) VALUES (?, ?, ?)"),
                {i.key(), text_value(f.key()), reference_value(f.value())});
        }
    }
    return result;
}

result_t store_writer_t::write_users(const installation_t& _installation) {
    const auto& users = _installation.users;
    result_t result;
    for (auto i = users.begin(); result.is_ok() && i != users.end(); ++i) {
        result = connection.run(
            QStringLiteral("INSERT INTO next_users (id, username, password_hash) VALUES (?, ?, ?)"),
            {text_value(i.key()), text_value(i->username), text_value(i->password_hash)});
    }
    return result;
}

result_t store_writer_t::write_permissions(const installation_t& _installation) {
    const QString insert =
        QStringLiteral("INSERT INTO next_permissions (user, element, bits) VALUES (?, ?, ?)");
    const auto& users = _installation.permissions;
    result_t result;
    for (auto user = users.begin(); user != users.end(); ++user) {
        for (auto i = user->begin(); result.is_ok() && i != user->end(); ++i) {
            if (i.value() != 0) {
                result = connection.run(insert, {user.key(), i.key(), i.value()});
            }
        }
    }
    return result;
}

}  // namespace database::store
