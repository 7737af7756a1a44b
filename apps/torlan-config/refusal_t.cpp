#include "refusal_t.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace torlan {

QByteArray error_packet(const refusal_t& _refusal) {
    const QJsonObject packet{{QStringLiteral("error"), _refusal.status},
                             {QStringLiteral("message"), _refusal.message}};
    return QJsonDocument(packet).toJson(QJsonDocument::Compact);
}

}  // namespace torlan
