#include "installation/document_writer.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "database/element_type.h"
#include "database/permission.h"
#include "installation/bus_data.h"

namespace database::installation {

namespace {

template <typename value_t, typename make_t>
QJsonObject write_section(const QMap<QString, value_t>& _entries, make_t _make) {
    QJsonObject section;
    for (auto it = _entries.begin(); it != _entries.end(); ++it) {
        section.insert(it.key(), _make(it.value()));
    }
    return section;
}

QJsonValue text_or_null(const QString& _text) {
    return _text.isNull() ? QJsonValue() : QJsonValue(_text);
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

QJsonObject item(const item_t& _item) {
    QJsonObject object{{QStringLiteral("value"), _item.value}};
    if (!_item.limits.writable) {
        object.insert(QStringLiteral("writable"), false);
    }
    insert_limit(object, QStringLiteral("min"), _item.limits.min);
    insert_limit(object, QStringLiteral("max"), _item.limits.max);
    insert_limit(object, QStringLiteral("step"), _item.limits.step);
    return object;
}

QJsonObject scenario(bool _execution) {
    return {{QStringLiteral("execution"), _execution}};
}

QJsonObject thermostat(const thermostat_t& _thermostat) {
    QJsonObject object{{QStringLiteral("ids"), write_section(_thermostat.ids, text_or_null)}};
    insert_unless_empty(object, QStringLiteral("id_actual"), _thermostat.id_actual);
    insert_unless_empty(object, QStringLiteral("id_windows_contact"),
                        _thermostat.id_windows_contact);
    return object;
}

QJsonObject element(const element_t& _element) {
    QJsonObject object{{QStringLiteral("name"), _element.name},
                       {QStringLiteral("type"), _element.type},
                       {QStringLiteral("flags"), _element.flags}};
    if (!_element.functions.isEmpty()) {
        object.insert(QStringLiteral("functions"), write_section(_element.functions, text_or_null));
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

QJsonObject user(const user_t& _user) {
    return {{QStringLiteral("username"), _user.username}};
}

QJsonObject user_with_password(const user_t& _user) {
    QJsonObject object = user(_user);
    if (!_user.password_hash.isEmpty()) {
        object.insert(QStringLiteral("password_hash"), _user.password_hash);
    }
    return object;
}

/// A denial is written as nothing, and so is a user who may do nothing.
QJsonObject permissions(const QMap<QString, QMap<QString, int>>& _permissions) {
    QJsonObject section;
    for (auto it = _permissions.begin(); it != _permissions.end(); ++it) {
        QMap<QString, int> grants = it.value();
        grants.removeIf([](const auto& _grant) { return _grant.value() == 0; });
        if (!grants.isEmpty()) {
            section.insert(it.key(), write_section(grants, permission::word));
        }
    }
    return section;
}

QJsonObject with_bus_data(QJsonObject _section, const QMap<QString, bus::bus_data_t>& _buses,
                          bus_role_t _role) {
    for (auto it = _buses.begin(); it != _buses.end(); ++it) {
        if (!_section.contains(it.key())) {
            continue;
        }
        QJsonObject entry = _section[it.key()].toObject();
        entry.insert(QStringLiteral("knx"), write_bus_data(it.value(), _role));
        _section.insert(it.key(), entry);
    }
    return _section;
}

}  // namespace

QByteArray write_document(const installation_t& _installation, passwords_t _passwords) {
    const QJsonObject document{
        {QStringLiteral("topic"), _installation.topic},
        {QStringLiteral("items"), with_bus_data(write_section(_installation.items, item),
                                                _installation.item_buses, bus_role_t::item)},
        {QStringLiteral("scenarios"),
         with_bus_data(write_section(_installation.scenarios, scenario),
                       _installation.scenario_buses, bus_role_t::scenario)},
        {QStringLiteral("thermostats"), write_section(_installation.thermostats, thermostat)},
        {QStringLiteral("elements"), write_section(_installation.elements, element)},
        {QStringLiteral("users"),
         write_section(_installation.users,
                       _passwords == passwords_t::hashed ? user_with_password : user)},
        {QStringLiteral("permissions"), permissions(_installation.permissions)},
    };
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

}  // namespace database::installation
