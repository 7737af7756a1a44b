#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <optional>

/// Between JSON and the bytes of a message.
namespace comunication::json_payload {

/// The object that @p _bytes hold; no bytes are an empty object. Nothing for broken JSON, for
/// anything that is not an object and for objects nested deeper than 1,024 levels.
std::optional<QJsonObject> decode(const QByteArray& _bytes);

/// Compact text of any JSON value. An undefined value gives no bytes.
QByteArray encode(const QJsonValue& _value);

}  // namespace comunication::json_payload
