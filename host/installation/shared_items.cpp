#include "installation/shared_items.h"

#include <QMap>

namespace database::installation {

namespace {

constexpr qsizetype told_items = 20;
constexpr qsizetype told_elements = 3;

/// The elements of each item, both in order of their ids.
using users_t = QMap<QString, QStringList>;

void add(const QString& _id, const QString& _element, users_t* _users) {
    QStringList& elements = (*_users)[_id];
    if (!_id.isEmpty() && (elements.isEmpty() || elements.constLast() != _element)) {
        elements.append(_element);
    }
}

void add_all(const QMap<QString, QString>& _ids, const QString& _element, users_t* _users) {
    for (const QString& id : _ids) {
        add(id, _element, _users);
    }
}

QString sentence(const QString& _what, const QStringList& _elements) {
    const qsizetype more = _elements.size() - told_elements;
    const QString last = more > 0 ? QStringLiteral("%1 more").arg(more) : _elements.constLast();
    const qsizetype named = more > 0 ? told_elements : _elements.size() - 1;
    return QStringLiteral("%1 is shared by elements %2 and %3: a right on one reaches it.")
        .arg(_what, _elements.mid(0, named).join(QLatin1String(", ")), last);
}

QStringList sentences(const QString& _kind, const users_t& _users) {
    QStringList told;
    for (auto it = _users.begin(); it != _users.end(); ++it) {
        if (it->size() > 1) {
            told.append(sentence(_kind + QLatin1Char(' ') + it.key(), *it));
        }
    }
    return told;
}

}  // namespace

QStringList shared_items(const installation_t& _installation) {
    users_t items;
    users_t scenarios;
    const auto& elements = _installation.elements;
    for (auto it = elements.begin(); it != elements.end(); ++it) {
        const thermostat_t thermostat = _installation.thermostats.value(it->thermostat);
        add_all(it->functions, it.key(), &items);
        add_all(thermostat.ids, it.key(), &items);
        add(thermostat.id_actual, it.key(), &items);
        add(thermostat.id_windows_contact, it.key(), &items);
        add(it->scenario, it.key(), &scenarios);
    }
    QStringList told =
        sentences(QStringLiteral("Item"), items) + sentences(QStringLiteral("Scenario"), scenarios);
    const qsizetype more = told.size() - told_items;
    if (more > 0) {
        told = told.mid(0, told_items);
        told.append(QStringLiteral("%1 more are shared by elements.").arg(more));
    }
    return told;
}

}  // namespace database::installation
