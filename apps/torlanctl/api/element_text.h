#pragma once

#include <QJsonObject>
#include <QString>

/// How elements of the API are shown. Nothing of their names and values steers a terminal. Pure.
namespace torlan {

/// "e-lamp  Kitchen lamp", and a line for each function: "  execute: 1".
QString element_text(const QString& _element, const QJsonObject& _data);

/// {"element", "name", "type", "functions": {function: value}}.
QJsonObject element_json(const QString& _element, const QJsonObject& _data);

}  // namespace torlan
