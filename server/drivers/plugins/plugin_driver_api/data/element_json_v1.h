#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <utility>

namespace interfaces {

class data_api_element_object_t;
class data_api_elements_t;

/// Version 1 JSON of the data API. The collection holds base-class objects, so the work is done
/// here, on the base; the _v1_t classes forward.
namespace v1 {

/// {"name", "type", "functions": {F: {"value": text}}}, without user or filter.
QJsonObject to_json(const data_api_element_object_t& _element);

/// The element as one user may see it.
/// @param _filter optional "types" (numbers) and "functions" (last segments of function names);
///        absent, empty or no array: no filter on that key
/// @param _code 202, or 401 with {"error": 401} as the result; a type that is filtered out gives
///        {} with 202
QJsonObject to_json(data_api_element_object_t& _element, const QString& _username,
                    const QJsonObject& _filter, int& _code);

/// All elements that the user may see and that have a function left, by element id.
QJsonObject to_json(data_api_elements_t& _elements, const QString& _username,
                    const QJsonObject& _filter);

/// Requests values on behalf of a user: {"functions": {F: "202" or "404"}}; without the write
/// bit 401 and an error object, and nothing is written.
QJsonObject request_set_value(data_api_element_object_t& _element, const QString& _username,
                              const QList<std::pair<QString, QJsonValue>>& _values, int& _code);

}  // namespace v1

}  // namespace interfaces
