#include "endpoint/json_payload.h"

#include <QJsonDocument>

namespace comunication::json_payload {

std::optional<QJsonObject> decode(const QByteArray& _bytes) {
    if (_bytes.isEmpty()) {
        return QJsonObject();
    }
    const QJsonDocument document = QJsonDocument::fromJson(_bytes);
    if (!document.isObject()) {
        return std::nullopt;
    }
    return document.object();
}

}  // namespace comunication::json_payload
