#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <optional>

/// From the bytes of a message to JSON; base/json_text.h goes the other way.
namespace comunication::json_payload {

/// The object that @p _bytes hold; no bytes are an empty object. Nothing for broken JSON, for
/// anything that is not an object and for objects nested deeper than 1,024 levels.
std::optional<QJsonObject> decode(const QByteArray& _bytes);

}  // namespace comunication::json_payload
