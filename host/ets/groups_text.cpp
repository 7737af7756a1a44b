#include "ets/groups_text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace ets {

QByteArray groups_text(const project_t& _project) {
    QJsonArray groups;
    for (const group_t& group : _project.groups) {
        groups.append(QJsonObject{
            {QStringLiteral("address"), _project.address(group.raw)},
            {QStringLiteral("name"), group.name},
            {QStringLiteral("description"), group.description},
            {QStringLiteral("dpt"), group.dpt.isEmpty() ? QJsonValue() : QJsonValue(group.dpt)},
        });
    }
    return QJsonDocument(groups).toJson(QJsonDocument::Indented);
}

}  // namespace ets
