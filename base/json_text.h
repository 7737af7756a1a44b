#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <optional>

/// JSON texts of any value, scalars included: QJsonDocument knows objects and arrays only.
namespace base {

/// The one value that @p _text holds; nothing when it is not exactly one JSON value.
inline std::optional<QJsonValue> json_from_text(const QByteArray& _text) {
    const QJsonDocument wrapped = QJsonDocument::fromJson('[' + _text + ']');
    const QJsonArray values = wrapped.array();
    if (values.size() != 1) {
        return std::nullopt;
    }
    return values.first();
}

/// @p _value as compact JSON; an undefined value as null.
inline QByteArray json_to_text(const QJsonValue& _value) {
    // The common case by itself: the brackets below cost a copy of the text.
    if (_value.isObject()) {
        return QJsonDocument(_value.toObject()).toJson(QJsonDocument::Compact);
    }
    const QByteArray wrapped = QJsonDocument(QJsonArray{_value}).toJson(QJsonDocument::Compact);
    return wrapped.mid(1, wrapped.size() - 2);
}

}  // namespace base
