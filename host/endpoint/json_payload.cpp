#include "endpoint/json_payload.h"

#include <QJsonArray>
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

QByteArray encode(const QJsonValue& _value) {
    if (_value.isObject()) {
        return QJsonDocument(_value.toObject()).toJson(QJsonDocument::Compact);
    }
    if (_value.isArray()) {
        return QJsonDocument(_value.toArray()).toJson(QJsonDocument::Compact);
    }
    if (_value.isUndefined()) {
        return {};
    }
    // A document holds arrays and objects only, so the brackets are taken off again.
    const QByteArray text =
        QJsonDocument(QJsonArray{_value}).toJson(QJsonDocument::Compact).trimmed();
    return text.mid(1, text.size() - 2);
}

}  // namespace comunication::json_payload
