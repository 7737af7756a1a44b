#include "thing_edits.h"

#include <QJsonArray>

#include "database/name_rules.h"
#include "installation/bus_data.h"
#include "installation/place_text.h"
#include "option_values.h"

namespace torlan {

namespace {

using namespace database::installation;
using base::result_t;
using database::store::kind_t;

const QLatin1Char equals('=');

/// The first that is not ok.
result_t first_failure(std::initializer_list<result_t> _results) {
    for (const result_t& result : _results) {
        if (!result.is_ok()) {
            return result;
        }
    }
    return {};
}

/// "execute=i-lamp" connects, "execute=" connects to nothing; --without takes the name out.
result_t connect(const call_t& _call, const char* _argument, QMap<QString, QString>* _items) {
    for (const QString& word : _call.all(_argument)) {
        const qsizetype sign = word.lastIndexOf(equals);  // an identifier has none
        if (sign <= 0) {
            return result_t::failed(QStringLiteral("%1 is no %2.")
                                        .arg(database::quoted(word), QLatin1String(_argument)));
        }
        const QString item = word.mid(sign + 1);
        _items->insert(word.left(sign), item.isEmpty() ? QString() : item);
    }
    for (const QString& name : _call.all("without")) {
        if (_items->remove(name) == 0) {
            return result_t::failed(
                QStringLiteral("There is no %1 to take out.").arg(database::quoted(name)));
        }
    }
    return {};
}

result_t edit_element(const call_t& _call, element_t* _element) {
    return first_failure({take_text(_call, "name", &_element->name),
                          take_whole(_call, "type", &_element->type),
                          take_whole(_call, "flags", &_element->flags),
                          take_text(_call, "scenario", &_element->scenario),
                          take_text(_call, "thermostat", &_element->thermostat),
                          connect(_call, "FUNCTION=ITEM", &_element->functions)});
}

result_t edit_thermostat(const call_t& _call, thermostat_t* _thermostat) {
    return first_failure({take_text(_call, "actual", &_thermostat->id_actual),
                          take_text(_call, "windows-contact", &_thermostat->id_windows_contact),
                          connect(_call, "KEY=ITEM", &_thermostat->ids)});
}

/// Whether one of the options that say something of the bus is given.
bool has_bus_options(const call_t& _call) {
    for (const char* const option :
         {"knx-type", "knx-write", "knx-status", "knx-read", "knx-answer", "knx-scene"}) {
        if (_call.has(option)) {
            return true;
        }
    }
    return false;
}

base::result_of_t<QJsonObject> bus_json(const call_t& _call, QJsonObject _json) {
    QString type = _json[QLatin1String("dpt")].toString();
    QString write = _json[QLatin1String("write")].toString();
    bool reads = false;
    bool answers = false;
    int scene = 0;
    const result_t taken = first_failure(
        {take_text(_call, "knx-type", &type), take_text(_call, "knx-write", &write),
         take_flag(_call, "knx-read", &reads), take_flag(_call, "knx-answer", &answers),
         take_whole(_call, "knx-scene", &scene)});
    if (!taken.is_ok()) {
        return taken;
    }
    const auto insert = [&](const char* _option, const char* _key, const QJsonValue& _value) {
        if (_call.has(_option)) {
            _json.insert(QLatin1String(_key), _value);
        }
    };
    insert("knx-type", "dpt", type);
    insert("knx-write", "write", write.isEmpty() ? QJsonValue(QJsonValue::Undefined) : write);
    insert("knx-status", "status",
           QJsonArray::fromStringList(
               _call["knx-status"].split(QLatin1Char(','), Qt::SkipEmptyParts)));
    insert("knx-read", "read", reads);
    insert("knx-answer", "answer", answers);
    insert("knx-scene", "scene", scene);
    return _json;
}

result_t edit_bus(const call_t& _call, bus_role_t _role, const QString& _id,
                  QMap<QString, bus::bus_data_t>* _buses) {
    if (_call.has("no-knx")) {
        _buses->remove(_id);
        return {};
    }
    if (!has_bus_options(_call)) {
        return {};
    }
    const auto known = _buses->constFind(_id);
    const auto json = bus_json(
        _call, known == _buses->constEnd() ? QJsonObject() : write_bus_data(*known, _role));
    if (!json.is_ok()) {
        return json;
    }
    const read_bus_data_t read = read_bus_data(json.value, _role);
    if (!read.is_ok()) {
        return result_t::failed(QStringLiteral("%1: %2.").arg(
            place_text(QStringList{_id, QStringLiteral("knx")} + read.place), read.error));
    }
    _buses->insert(_id, read.data);
    return {};
}

result_t edit_item(const call_t& _call, const QString& _id, installation_t* _thing) {
    item_t& item = _thing->items[_id];
    return first_failure({take_text(_call, "value", &item.value),
                          take_flag(_call, "writable", &item.limits.writable),
                          take_limit(_call, "min", &item.limits.min),
                          take_limit(_call, "max", &item.limits.max),
                          take_limit(_call, "step", &item.limits.step),
                          edit_bus(_call, bus_role_t::item, _id, &_thing->item_buses)});
}

const option_t no_knx{"no-knx", "", "nothing to do with the bus any more"};
const option_t knx_write{"knx-write", "ADDRESS", "the group address that values are sent to"};

}  // namespace

QList<option_t> edit_options(kind_t _kind) {
    switch (_kind) {
        case kind_t::element:
            return {{"name", "TEXT", "what people call it"},
                    {"type", "N", "type code, 1 for a lamp; see docs/api.md"},
                    {"flags", "N", "flags"},
                    {"scenario", "SCENARIO", "what it runs; empty: none"},
                    {"thermostat", "THERMOSTAT", "what it shows; empty: none"},
                    {"without", "NAME", "take this function out"}};
        case kind_t::item:
            return {
                {"writable", "yes|no", "whether clients may write it"},
                {"min", "NUMBER", "least value that clients may write; none: no end"},
                {"max", "NUMBER", "greatest value; none: no end"},
                {"step", "NUMBER", "whole steps only; none: any number"},
                {"knx-type", "TYPE", "data point type on the bus, such as 9.001"},
                knx_write,
                {"knx-status", "ADDRESSES", "those whose telegrams set it, with commas between"},
                {"knx-read", "yes|no", "whether the first of them is asked at the start"},
                {"knx-answer", "yes|no", "whether others' questions are answered"},
                no_knx};
        case kind_t::scenario:
            return {{"knx-type", "TYPE", "17.001 or 18.001"},
                    knx_write,
                    {"knx-scene", "N", "number of the scene, 1 to 64"},
                    no_knx};
        case kind_t::thermostat:
            return {{"actual", "ITEM", "the measured temperature; empty: none"},
                    {"windows-contact", "ITEM", "the window's contact; empty: none"},
                    {"without", "NAME", "take this key out"}};
        case kind_t::user:
            break;
    }
    return {};
}

result_t edit_thing(const call_t& _call, kind_t _kind, const QString& _id, installation_t* _thing) {
    switch (_kind) {
        case kind_t::element:
            return edit_element(_call, &_thing->elements[_id]);
        case kind_t::item:
            return edit_item(_call, _id, _thing);
        case kind_t::scenario:
            return edit_bus(_call, bus_role_t::scenario, _id, &_thing->scenario_buses);
        case kind_t::thermostat:
            return edit_thermostat(_call, &_thing->thermostats[_id]);
        case kind_t::user:
            break;
    }
    return {};
}

}  // namespace torlan
