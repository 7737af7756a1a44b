#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include "knx/group_address_t.h"

namespace ets {

/// A group address of a project. Texts are as in ETS.
struct group_t {
    quint16 raw = 0;
    QString name;
    QString description;
    QString dpt;         ///< "1.001", "1"; empty: not known
    QStringList ranges;  ///< names of the groups that it is in, from the main group on
    QString room;        ///< where all devices are that use it; empty: not known
    bool operator==(const group_t&) const = default;
};

/// One address of a function, with what it is there for: "SwitchOnOff".
struct role_t {
    QString role;
    quint16 raw = 0;
    bool operator==(const role_t&) const = default;
};

/// A function of the building view: a lamp with all its addresses.
struct function_t {
    QString id;    ///< "F-12"
    QString type;  ///< "FT-1"
    QString name;
    QString room;
    QList<role_t> roles;
    bool operator==(const function_t&) const = default;
};

/// What an ETS project or an export says, as far as an installation needs it.
struct project_t {
    QString id;  ///< "P-05C0"; empty: an export, which does not tell
    knx::address_style_t style = knx::address_style_t::three_levels;
    QMap<quint16, group_t> groups;  ///< by raw address
    QList<function_t> functions;
    QStringList notes;  ///< what was not understood, a sentence each; use note()

    /// As the project writes it.
    QString address(quint16 _raw) const { return knx::group_address_t(_raw).text(style); }

    /// Keeps a sentence, unless there are more than anybody reads.
    void note(const QString& _sentence) {
        constexpr qsizetype most = 70'000;
        if (notes.size() < most) {
            notes.append(_sentence);
        } else if (notes.size() == most) {
            notes.append(QStringLiteral("There is more that was not understood."));
        }
    }
};

}  // namespace ets
