#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <optional>

/// JSON texts of any value, scalars included (QJsonDocument knows objects and arrays only).

/// The one value that @p _text holds; nothing when it is not exactly one JSON value.
std::optional<QJsonValue> json_from_text(const QByteArray& _text);

/// @p _value as compact JSON; an undefined value as null.
QByteArray json_to_text(const QJsonValue& _value);
