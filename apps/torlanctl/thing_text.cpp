#include "thing_text.h"

#include "base/json_text.h"
#include "database/name_rules.h"
#include "installation/bus_data.h"
#include "installation/entry_json.h"

namespace torlan {

namespace {

using namespace database::installation;
using database::store::kind_t;

void insert_bus(const QMap<QString, bus::bus_data_t>& _buses, const QString& _id, bus_role_t _role,
                QJsonObject* _json) {
    const auto data = _buses.constFind(_id);
    if (data != _buses.constEnd()) {
        _json->insert(QStringLiteral("knx"), write_bus_data(*data, _role));
    }
}

QJsonObject entry(kind_t _kind, const QString& _id, const installation_t& _thing) {
    QJsonObject json;
    switch (_kind) {
        case kind_t::element:
            return element_json(_thing.elements[_id]);
        case kind_t::item:
            json = item_json(_thing.items[_id]);
            insert_bus(_thing.item_buses, _id, bus_role_t::item, &json);
            return json;
        case kind_t::scenario:
            json = scenario_json(_thing.scenarios[_id]);
            insert_bus(_thing.scenario_buses, _id, bus_role_t::scenario, &json);
            return json;
        case kind_t::thermostat:
            return thermostat_json(_thing.thermostats[_id]);
        case kind_t::user:
            break;
    }
    return json;
}

QString most_of(kind_t _kind, const QString& _id, const installation_t& _thing) {
    switch (_kind) {
        case kind_t::element:
            return QStringLiteral("%1  %2")
                .arg(_thing.elements[_id].type, 3)
                .arg(_thing.elements[_id].name);
        case kind_t::item:
            return _thing.items[_id].value;
        case kind_t::scenario:
            return QLatin1String(_thing.scenarios[_id] ? "runs" : "");
        default:
            return _thing.thermostats[_id].ids.keys().join(QLatin1String(", "));
    }
}

QString value_text(const QJsonValue& _value) {
    return _value.isString() ? _value.toString() : QString::fromUtf8(base::json_to_text(_value));
}

QString lines_below(const QString& _above, const QJsonObject& _object) {
    QString lines;
    for (auto it = _object.begin(); it != _object.end(); ++it) {
        const QString key = _above + it.key();
        lines += it.value().isObject() ? lines_below(key + QLatin1Char('/'), it.value().toObject())
                                       : QStringLiteral("%1 %2\n").arg(
                                             database::cleaned_text(key).leftJustified(27),
                                             database::cleaned_text(value_text(it.value())));
    }
    return lines;
}

}  // namespace

QJsonObject thing_json(kind_t _kind, const QString& _id, const installation_t& _thing) {
    QJsonObject json = entry(_kind, _id, _thing);
    json.insert(database::store::word_of(_kind), _id);
    return json;
}

QString thing_line(kind_t _kind, const QString& _id, const installation_t& _thing) {
    return QStringLiteral("%1 %2")
        .arg(_id.leftJustified(31), database::cleaned_text(most_of(_kind, _id, _thing)))
        .trimmed();
}

QString key_lines(const QJsonObject& _object) {
    return lines_below({}, _object);
}

}  // namespace torlan
