#include "installation/document_writer.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "database/permission.h"
#include "installation/bus_data.h"
#include "installation/entry_json.h"

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
        {QStringLiteral("items"), with_bus_data(write_section(_installation.items, item_json),
                                                _installation.item_buses, bus_role_t::item)},
        {QStringLiteral("scenarios"),
         with_bus_data(write_section(_installation.scenarios, scenario_json),
                       _installation.scenario_buses, bus_role_t::scenario)},
        {QStringLiteral("thermostats"), write_section(_installation.thermostats, thermostat_json)},
        {QStringLiteral("elements"), write_section(_installation.elements, element_json)},
        {QStringLiteral("users"),
         write_section(_installation.users,
                       _passwords == passwords_t::hashed ? user_with_password : user)},
        {QStringLiteral("permissions"), permissions(_installation.permissions)},
    };
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

}  // namespace database::installation
