#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace torlan {

struct command_t;

/// A call of a command, as it was typed.
struct call_t {
    const command_t* command = nullptr;  ///< null: help or version is asked for, or none is named
    QString group{};                     ///< the first word, where help of all with it is asked for
    QString data{};                      ///< the installation's folder
    /// By the names of arguments ("USER") and of options ("json"); a switch has no values.
    QHash<QString, QStringList> given{};

    bool has(const char* _name) const { return given.contains(QLatin1String(_name)); }
    /// The only or the last; empty: not given.
    QString operator[](const char* _name) const {
        const QStringList values = given.value(QLatin1String(_name));
        return values.isEmpty() ? QString() : values.constLast();
    }
    QStringList all(const char* _name) const { return given.value(QLatin1String(_name)); }
};

}  // namespace torlan
