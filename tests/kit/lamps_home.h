#pragma once

#include <QJsonObject>
#include <QString>

#include "kit/password_of.h"

namespace kit {

inline QString lamp_id(int _index) {
    return QStringLiteral("e-%1").arg(_index);
}

/// An installation of any size: lamps "e-0" and so on, which share the items "i-0" and so on in
/// turn, and these users, "u-" and the name, who may do everything.
inline QJsonObject lamps_home(int _lamps, int _items, const QStringList& _users) {
    QJsonObject items;
    for (int index = 0; index < _items; ++index) {
        items.insert(QStringLiteral("i-%1").arg(index), QJsonObject{{"value", "0"}});
    }
    QJsonObject elements;
    QJsonObject grants;
    for (int index = 0; index < _lamps; ++index) {
        const QString item = QStringLiteral("i-%1").arg(index % _items);
        elements.insert(lamp_id(index), QJsonObject{{"name", QStringLiteral("Lamp %1").arg(index)},
                                                    {"type", 1},
                                                    {"flags", 0},
                                                    {"functions", QJsonObject{{"execute", item}}}});
        grants.insert(lamp_id(index), "readwrite");
    }
    QJsonObject users;
    QJsonObject permissions;
    for (const QString& name : _users) {
        users.insert("u-" + name, QJsonObject{{"username", name}, {"password", password_of(name)}});
        permissions.insert("u-" + name, grants);
    }
    return {{"topic", "installation/lamps"}, {"items", items},       {"scenarios", QJsonObject()},
            {"thermostats", QJsonObject()},  {"elements", elements}, {"users", users},
            {"permissions", permissions}};
}

/// "user0" and so on.
inline QStringList numbered_users(int _count) {
    QStringList names;
    for (int index = 0; index < _count; ++index) {
        names += QStringLiteral("user%1").arg(index);
    }
    return names;
}

}  // namespace kit
