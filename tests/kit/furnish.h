#pragma once

#include <QJsonObject>

#include "fakes/memory_database_t.h"
#include "kit/small_home.h"

namespace kit {

/// Fills @p _db from an installation document.
inline void furnish(fakes::memory_database_t& _db, const QJsonObject& _document = small_home()) {
    const auto each = [](const QJsonObject& object, const auto& take) {
        for (auto entry = object.begin(); entry != object.end(); ++entry) {
            take(entry.key(), entry.value().toObject());
        }
    };
    const auto part = [&_document](const char* name) {
        return _document.value(QLatin1String(name)).toObject();
    };
    const auto text = [](const QJsonObject& object, const char* key) {
        return object.value(QLatin1String(key)).toString();
    };
    _db.set_topic(text(_document, "topic"));
    each(part("items"), [&](const QString& id, const QJsonObject& item) {
        _db.add_item(id, text(item, "value"));
    });
    each(part("scenarios"), [&](const QString& id, const QJsonObject& scenario) {
        _db.add_scenary(id, scenario.value(QLatin1String("execution")).toBool());
    });
    each(part("thermostats"), [&](const QString& id, const QJsonObject& thermostat) {
        _db.add_thermostat(id, thermostat.value(QLatin1String("ids")).toObject().toVariantMap(),
                           text(thermostat, "id_actual"), text(thermostat, "id_windows_contact"));
    });
    each(part("elements"), [&](const QString& id, const QJsonObject& element) {
        const auto functions = element.value(QLatin1String("functions")).toObject().toVariantMap();
        const int flags = element.value(QLatin1String("flags")).toInt();
        const QString name = text(element, "name");
        if (element.contains(QLatin1String("scenario"))) {
            _db.add_scenario_element(id, name, text(element, "scenario"), flags, functions);
        } else if (element.contains(QLatin1String("thermostat"))) {
            _db.add_thermo_element(id, name, text(element, "thermostat"));
        } else {
            _db.add_element(id, name, element.value(QLatin1String("type")).toInt(), functions,
                            flags);
        }
    });
    each(part("users"), [&](const QString& id, const QJsonObject& user) {
        _db.add_user(id, text(user, "username"));
    });
    const QStringList words{QStringLiteral("deny"), QStringLiteral("read"), QStringLiteral("write"),
                            QStringLiteral("readwrite")};
    each(part("permissions"), [&](const QString& user, const QJsonObject& grants) {
        for (auto grant = grants.begin(); grant != grants.end(); ++grant) {
            _db.grant(user, grant.key(), static_cast<int>(words.indexOf(grant->toString())));
        }
    });
}

}  // namespace kit
