#include "store/thing_writer_t.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "store/store_writer_t.h"

namespace database::store {

using ::base::result_t;
using installation::bus_role_t;
using installation::installation_t;

result_t thing_writer_t::write(kind_t _kind, const QString& _id, const installation_t& _thing,
                               row_t _row) {
    switch (_kind) {
        case kind_t::element:
            return write_element(_id, _thing.elements[_id], _row);
        case kind_t::item:
            return write_item(_id, _thing, _row);
        case kind_t::scenario:
            return write_scenario(_id, _thing, _row);
        case kind_t::thermostat:
            return write_thermostat(_id, _thing.thermostats[_id], _row);
        case kind_t::user:
            break;
    }
    return result_t::failed(QStringLiteral("Users are no things."));
}

result_t thing_writer_t::write_element(const QString& _id, const installation::element_t& _element,
                                       row_t _row) {
    const char* const sql =
        _row == row_t::is_new
            ? "INSERT INTO elements (name, type, flags, scenario, thermostat, id) "
              "VALUES (?, ?, ?, ?, ?, ?)"
            : "UPDATE elements SET name = ?, type = ?, flags = ?, scenario = ?, thermostat = ? "
              "WHERE id = ?";
    const result_t result =
        connection.run(QLatin1String(sql), {text_value(_element.name), _element.type,
                                            _element.flags, reference_value(_element.scenario),
                                            reference_value(_element.thermostat), _id});
    return result.is_ok()
               ? write_connections("functions", "element", "name", _id, _element.functions)
               : result;
}

result_t thing_writer_t::write_item(const QString& _id, const installation_t& _thing, row_t _row) {
    const installation::item_t& item = _thing.items[_id];
    QVariantList values{int(item.limits.writable),
                        limit_value(item.limits.min),
                        limit_value(item.limits.max),
                        limit_value(item.limits.step),
                        bus_value(_thing.item_buses, _id, bus_role_t::item),
                        _id};
    if (_row == row_t::is_there) {
        return connection.run(
            QStringLiteral("UPDATE items SET writable = ?, min = ?, max = ?, step = ?, knx = ? "
                           "WHERE id = ?"),
            values);
    }
    return connection.run(
        QStringLiteral("INSERT INTO items (writable, min, max, step, knx, id, value) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?)"),
        values + QVariantList{text_value(item.value)});
}

result_t thing_writer_t::write_scenario(const QString& _id, const installation_t& _thing,
                                        row_t _row) {
    const QVariant bus = bus_value(_thing.scenario_buses, _id, bus_role_t::scenario);
    return _row == row_t::is_there
               ? connection.run(QStringLiteral("UPDATE scenarios SET knx = ? WHERE id = ?"),
                                {bus, _id})
               : connection.run(
                     QStringLiteral("INSERT INTO scenarios (knx, id, execution) VALUES (?, ?, ?)"),
                     {bus, _id, int(_thing.scenarios[_id])});
}

result_t thing_writer_t::write_thermostat(const QString& _id,
                                          const installation::thermostat_t& _thermostat,
                                          row_t _row) {
    const char* const sql =
        _row == row_t::is_new
            ? "INSERT INTO thermostats (id_actual, id_windows_contact, id) VALUES (?, ?, ?)"
            : "UPDATE thermostats SET id_actual = ?, id_windows_contact = ? WHERE id = ?";
    const result_t result =
        connection.run(QLatin1String(sql), {reference_value(_thermostat.id_actual),
                                            reference_value(_thermostat.id_windows_contact), _id});
    return result.is_ok()
               ? write_connections("thermostat_ids", "thermostat", "key", _id, _thermostat.ids)
               : result;
}

result_t thing_writer_t::write_connections(const char* _table, const char* _owner,
                                           const char* _name, const QString& _id,
                                           const QMap<QString, QString>& _items) {
    const QLatin1String table(_table);
    const QLatin1String owner(_owner);
    const QLatin1String name(_name);
    const QByteArray kept =
        QJsonDocument(QJsonArray::fromStringList(_items.keys())).toJson(QJsonDocument::Compact);
    result_t result = connection.run(
        QStringLiteral("DELETE FROM %1 WHERE %2 = ? AND %3 NOT IN (SELECT value FROM json_each(?))")
            .arg(table, owner, name),
        {_id, QString::fromUtf8(kept)});
    for (auto it = _items.begin(); it != _items.end() && result.is_ok(); ++it) {
        result = connection.run(
            QStringLiteral("INSERT INTO %1 (%2, %3, item) VALUES (?, ?, ?) ON CONFLICT DO UPDATE "
                           "SET item = excluded.item WHERE item IS NOT excluded.item")
                .arg(table, owner, name),
            {_id, text_value(it.key()), reference_value(it.value())});
    }
    return result;
}

}  // namespace database::store
