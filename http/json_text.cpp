#include "http/json_text.h"

#include <QJsonArray>
#include <QJsonDocument>

std::optional<QJsonValue> json_from_text(const QByteArray& _text) {
    const QJsonDocument wrapped = QJsonDocument::fromJson('[' + _text + ']');
    const QJsonArray values = wrapped.array();
    if (values.size() != 1) {
        return std::nullopt;
    }
    return values.first();
}

QByteArray json_to_text(const QJsonValue& _value) {
    const QByteArray wrapped = QJsonDocument(QJsonArray{_value}).toJson(QJsonDocument::Compact);
    return wrapped.mid(1, wrapped.size() - 2);
}
