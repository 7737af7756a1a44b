#pragma once

#include <QJsonObject>

#include "installation/installation_t.h"
#include "store/kind_t.h"

/// Elements, items, scenarios and thermostats as they are shown. Pure.
namespace torlan {

/// The entry as a document has it, with its identifier.
QJsonObject thing_json(database::store::kind_t _kind, const QString& _id,
                       const database::installation::installation_t& _thing);

/// One line of a list: the identifier and what tells most of it.
QString thing_line(database::store::kind_t _kind, const QString& _id,
                   const database::installation::installation_t& _thing);

/// An object as lines of "key  value"; keys of objects in it follow a "/".
QString key_lines(const QJsonObject& _object);

}  // namespace torlan
