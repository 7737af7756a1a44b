#include "store/store_reader_t.h"

#include <QSqlQuery>
#include <limits>

#include "base/json_text.h"
#include "database/name_rules.h"
#include "installation/place_text.h"
#include "installation/tidy.h"

namespace database::store {

using ::base::result_t;
using installation::installation_t;

namespace {

QString select(const char* _sql, const char* _where) {
    return QLatin1String(_sql) + QLatin1String(_where);
}

/// What is no number is none that a rule could take for one.
std::optional<double> limit(const QVariant& _value) {
    if (_value.isNull()) {
        return std::nullopt;
    }
    const bool is_number =
        _value.typeId() == QMetaType::Double || _value.typeId() == QMetaType::LongLong;
    return is_number ? _value.toDouble() : std::numeric_limits<double>::quiet_NaN();
}

bool is_flag(const QVariant& _value) {
    return _value == QVariant(qlonglong(0)) || _value == QVariant(qlonglong(1));
}

/// A reference that is no text leads nowhere.
QString reference(const QVariant& _value) {
    return _value.typeId() == QMetaType::QString ? _value.toString() : QString();
}

}  // namespace

result_t store_reader_t::read_all(installation_t* _target) {
    const filter_t all;
    for (const auto read : {&store_reader_t::read_items, &store_reader_t::read_scenarios,
                            &store_reader_t::read_thermostats, &store_reader_t::read_thermostat_ids,
                            &store_reader_t::read_elements, &store_reader_t::read_functions,
                            &store_reader_t::read_users, &store_reader_t::read_permissions}) {
        const result_t result = (this->*read)(all, _target);
        if (!result.is_ok()) {
            return result;
        }
    }
    result_t result = read_buses(_target);
    if (result.is_ok()) {
        result = read_topic(_target);
    }
    tidy(_target);
    return result;
}

result_t store_reader_t::read_buses(installation_t* _target) {
    using installation::bus_role_t;
    const result_t items = read_bus_column("items", bus_role_t::item, {}, &_target->item_buses);
    return items.is_ok()
               ? read_bus_column("scenarios", bus_role_t::scenario, {}, &_target->scenario_buses)
               : items;
}

result_t store_reader_t::read_bus_column(const char* _table, installation::bus_role_t _role,
                                         const filter_t& _filter,
                                         QMap<QString, bus::bus_data_t>* _target) {
    return connection.each(
        QStringLiteral("SELECT id, knx FROM %1 WHERE knx IS NOT NULL%2")
            .arg(QLatin1String(_table), QLatin1String(_filter.where)),
        _filter.values, [this, _table, _role, _target](const QSqlQuery& _row) {
            const QString id = _row.value(0).toString();
            const auto json = ::base::json_from_text(_row.value(1).toString().toUtf8());
            const installation::read_bus_data_t read =
                installation::read_bus_data(json.value_or(QJsonValue()), _role);
            if (!identifier_error(id).isEmpty()) {
                return;
            }
            if (read.is_ok()) {
                _target->insert(id, read.data);
                return;
            }
            note({QStringLiteral("%1 is left out: %2")
                      .arg(installation::place_text(
                               QStringList{QLatin1String(_table), id, QStringLiteral("knx")} +
                               read.place),
                           read.error)});
        });
}

result_t store_reader_t::read_accounts(installation_t* _target) {
    const result_t result = read_users({}, _target);
    tidy(_target);
    return result;
}

result_t store_reader_t::read_batch(const change_batch_t& _batch, installation_t* _target) {
    struct step_t {
        result_t (store_reader_t::*read)(const filter_t&, installation_t*);
        const std::set<QString>& keys;
        const char* where;
    };
    for (const step_t& step : {
             step_t{&store_reader_t::read_items, _batch.items, " WHERE id = ?"},
             step_t{&store_reader_t::read_items, _batch.limits, " WHERE id = ?"},
             step_t{&store_reader_t::read_scenarios, _batch.scenarios, " WHERE id = ?"},
             step_t{&store_reader_t::read_thermostats, _batch.thermostats, " WHERE id = ?"},
             step_t{&store_reader_t::read_thermostat_ids, _batch.thermostats,
                    " WHERE thermostat = ?"},
             step_t{&store_reader_t::read_elements, _batch.elements, " WHERE id = ?"},
             step_t{&store_reader_t::read_functions, _batch.elements, " WHERE element = ?"},
             step_t{&store_reader_t::read_permissions, _batch.elements, " WHERE element = ?"},
             step_t{&store_reader_t::read_users, _batch.users, " WHERE id = ?"},
         }) {
        for (const QString& key : step.keys) {
            const result_t result = (this->*step.read)({step.where, {key}}, _target);
            if (!result.is_ok()) {
                return result;
            }
        }
    }
    const result_t result = _batch.topic ? read_topic(_target) : result_t();
    tidy(_target);
    return result;
}

result_t store_reader_t::read_things(kind_t _kind, const QStringList& _ids,
                                     installation_t* _target) {
    for (const QString& id : _ids) {
        const result_t result = read_thing(_kind, id, _target);
        if (!result.is_ok()) {
            return result;
        }
    }
    tidy(_target);
    return {};
}

result_t store_reader_t::read_thing(kind_t _kind, const QString& _id, installation_t* _target) {
    using installation::bus_role_t;
    const filter_t row{" WHERE id = ?", {_id}};
    const filter_t bus{" AND id = ?", {_id}};
    result_t result;
    switch (_kind) {
        case kind_t::element:
            result = read_elements(row, _target);
            return result.is_ok() ? read_functions({" WHERE element = ?", {_id}}, _target) : result;
        case kind_t::item:
            result = read_items(row, _target);
            return result.is_ok()
                       ? read_bus_column("items", bus_role_t::item, bus, &_target->item_buses)
                       : result;
        case kind_t::scenario:
            result = read_scenarios(row, _target);
            return result.is_ok() ? read_bus_column("scenarios", bus_role_t::scenario, bus,
                                                    &_target->scenario_buses)
                                  : result;
        case kind_t::thermostat:
            result = read_thermostats(row, _target);
            return result.is_ok() ? read_thermostat_ids({" WHERE thermostat = ?", {_id}}, _target)
                                  : result;
        case kind_t::user:
            break;
    }
    return result;
}

bool store_reader_t::is_named(const char* _table, const QSqlQuery& _row) {
    const QVariant key = _row.value(0);
    if (key.typeId() == QMetaType::QString) {
        return true;
    }
    note({QStringLiteral("%1/%2 is left out: the identifier must be text")
              .arg(QLatin1String(_table), shown(key.toString()))});
    return false;
}

void store_reader_t::tidy(installation_t* _target) {
    note(installation::tidy_entries(_target));
}

void store_reader_t::note(const QStringList& _what) {
    for (const QString& what : _what) {
        sentences.append(QStringLiteral("Database %1: %2.").arg(connection.path(), what));
    }
}

result_t store_reader_t::read_topic(installation_t* _target) {
    return connection.each(
        QStringLiteral("SELECT value FROM meta WHERE key = 'topic'"), {},
        [_target](const QSqlQuery& _row) { _target->topic = _row.value(0).toString(); });
}

result_t store_reader_t::read_items(const filter_t& _filter, installation_t* _target) {
    return connection.each(
        select("SELECT id, value, writable, min, max, step FROM items", _filter.where),
        _filter.values, [this, _target](const QSqlQuery& _row) {
            if (!is_named("items", _row)) {
                return;
            }
            const bool is_told = is_flag(_row.value(2));
            if (!is_told) {
                note({QStringLiteral("items/%1 is not writable: writable must be 0 or 1")
                          .arg(shown(_row.value(0).toString()))});
            }
            _target->items.insert(_row.value(0).toString(),
                                  {_row.value(1).toString(),
                                   {is_told && _row.value(2).toBool(), limit(_row.value(3)),
                                    limit(_row.value(4)), limit(_row.value(5))}});
        });
}

result_t store_reader_t::read_scenarios(const filter_t& _filter, installation_t* _target) {
    return connection.each(select("SELECT id, execution FROM scenarios", _filter.where),
                           _filter.values, [this, _target](const QSqlQuery& _row) {
                               if (is_named("scenarios", _row)) {
                                   _target->scenarios.insert(_row.value(0).toString(),
                                                             _row.value(1).toBool());
                               }
                           });
}

result_t store_reader_t::read_thermostats(const filter_t& _filter, installation_t* _target) {
    return connection.each(
        select("SELECT id, id_actual, id_windows_contact FROM thermostats", _filter.where),
        _filter.values, [this, _target](const QSqlQuery& _row) {
            if (is_named("thermostats", _row)) {
                installation::thermostat_t& thermostat =
                    _target->thermostats[_row.value(0).toString()];
                thermostat.id_actual = reference(_row.value(1));
                thermostat.id_windows_contact = reference(_row.value(2));
            }
        });
}

result_t store_reader_t::read_thermostat_ids(const filter_t& _filter, installation_t* _target) {
    return connection.each(
        select("SELECT thermostat, key, item FROM thermostat_ids", _filter.where), _filter.values,
        [_target](const QSqlQuery& _row) {
            const auto thermostat = _target->thermostats.find(reference(_row.value(0)));
            if (thermostat != _target->thermostats.end()) {
                thermostat->ids.insert(_row.value(1).toString(), reference(_row.value(2)));
            }
        });
}

result_t store_reader_t::read_elements(const filter_t& _filter, installation_t* _target) {
    return connection.each(
        select("SELECT id, name, type, flags, scenario, thermostat FROM elements", _filter.where),
        _filter.values, [this, _target](const QSqlQuery& _row) {
            if (is_named("elements", _row)) {
                installation::element_t& element = _target->elements[_row.value(0).toString()];
                element.name = _row.value(1).toString();
                element.type = _row.value(2).toInt();
                element.flags = _row.value(3).toInt();
                element.scenario = reference(_row.value(4));
                element.thermostat = reference(_row.value(5));
            }
        });
}

result_t store_reader_t::read_functions(const filter_t& _filter, installation_t* _target) {
    return connection.each(
        select("SELECT element, name, item FROM functions", _filter.where), _filter.values,
        [_target](const QSqlQuery& _row) {
            const auto element = _target->elements.find(reference(_row.value(0)));
            if (element != _target->elements.end()) {
                element->functions.insert(_row.value(1).toString(), reference(_row.value(2)));
            }
        });
}

result_t store_reader_t::read_users(const filter_t& _filter, installation_t* _target) {
    return connection.each(select("SELECT id, username, password_hash FROM users", _filter.where),
                           _filter.values, [this, _target](const QSqlQuery& _row) {
                               if (is_named("users", _row)) {
                                   _target->users.insert(
                                       _row.value(0).toString(),
                                       {reference(_row.value(1)), _row.value(2).toString()});
                               }
                           });
}

result_t store_reader_t::read_permissions(const filter_t& _filter, installation_t* _target) {
    return connection.each(
        select("SELECT user, element, bits FROM permissions JOIN users ON users.id = user",
               _filter.where),
        _filter.values, [_target](const QSqlQuery& _row) {
            // A grant whose element is gone (a writer without foreign keys) is none.
            const auto element = _target->elements.constFind(reference(_row.value(1)));
            if (element != _target->elements.constEnd()) {
                _target->permissions[reference(_row.value(0))].insert(element.key(),
                                                                      _row.value(2).toInt());
            }
        });
}

}  // namespace database::store
