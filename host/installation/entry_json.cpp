#include "installation/entry_json.h"

#include "database/element_type.h"

namespace database::installation {

namespace {

/// A null id: not connected.
QJsonObject connections(const QMap<QString, QString>& _ids) {
    QJsonObject section;
    for (auto it = _ids.begin(); it != _ids.end(); ++it) {
        section.insert(it.key(), it->isNull() ? QJsonValue() : QJsonValue(it.value()));
    }
    return section;
}

void insert_unless_empty(QJsonObject& _object, const QString& _key, const QString& _text) {
    if (!_text.isEmpty()) {
        _object.insert(_key, _text);
    }
}

void insert_limit(QJsonObject& _object, const QString& _key, const std::optional<double>& _limit) {
    if (_limit) {
        _object.insert(_key, *_limit);
    }
}

}  // namespace

QJsonObject item_json(const item_t& _item) {
    QJsonObject object{{QStringLiteral("value"), _item.value}};
    if (!_item.limits.writable) {
        object.insert(QStringLiteral("writable"), false);
    }
    insert_limit(object, QStringLiteral("min"), _item.limits.min);
    insert_limit(object, QStringLiteral("max"), _item.limits.max);
    insert_limit(object, QStringLiteral("step"), _item.limits.step);
    return object;
}

QJsonObject scenario_json(bool _execution) {
    return {{QStringLiteral("execution"), _execution}};
}

QJsonObject thermostat_json(const thermostat_t& _thermostat) {
    QJsonObject object{{QStringLiteral("ids"), connections(_thermostat.ids)}};
    insert_unless_empty(object, QStringLiteral("id_actual"), _thermostat.id_actual);
    insert_unless_empty(object, QStringLiteral("id_windows_contact"),
                        _thermostat.id_windows_contact);
    return object;
}

QJsonObject element_json(const element_t& _element) {
    QJsonObject object{{QStringLiteral("name"), _element.name},
                       {QStringLiteral("type"), _element.type},
                       {QStringLiteral("flags"), _element.flags}};
    if (!_element.functions.isEmpty()) {
        object.insert(QStringLiteral("functions"), connections(_element.functions));
    }
    const auto insert_target = [&object, &_element](const QString& _key, const QString& _id,
                                                    int _type) {
        // An element of the type must say it when there is none.
        if (!_id.isEmpty() || _element.type == _type) {
            object.insert(_key, _id);
        }
    };
    insert_target(QStringLiteral("scenario"), _element.scenario, element_type::scenario);
    insert_target(QStringLiteral("thermostat"), _element.thermostat, element_type::thermostat);
    return object;
}

}  // namespace database::installation
