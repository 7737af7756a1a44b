#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace database::live {

/// Ids of items as elements and thermostats hold them: not connected is an invalid value.
inline QMap<QString, QVariant> item_references(const QMap<QString, QString>& _ids) {
    QMap<QString, QVariant> references;
    for (auto i = _ids.begin(); i != _ids.end(); ++i) {
        references.insert(references.cend(), i.key(), i->isEmpty() ? QVariant() : QVariant(*i));
    }
    return references;
}

}  // namespace database::live
