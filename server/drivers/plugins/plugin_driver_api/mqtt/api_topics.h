#pragma once

#include <QString>

/// Topics and route patterns of the MQTT API, e.g. below "local/api/v1". Pure functions; every
/// template is filled in one pass, so a value that holds "%2" stays as it is.
namespace interfaces::api_topics {

/// One topic level made of letters, digits, dot, underscore and hyphen.
extern const QString identifier;
extern const QString get_path;     ///< "request/get/elements/objects_list"
extern const QString set_path;     ///< "request/set/elements/objects_list"
extern const QString status_path;  ///< "status/elements/objects_list"

/// "local/api/<version>".
QString root(const QString& _version);
/// Pattern of a request on the whole list; groups: user, second level.
QString list_pattern(const QString& _root, const QString& _path);
/// Pattern of a request on one element; groups: user, second level, element id.
QString element_pattern(const QString& _root, const QString& _path);
/// Pattern of an element's status topic; groups: user, element id.
QString retained_pattern(const QString& _root);
/// Status topic of one user's whole list.
QString user_status(const QString& _root, const QString& _username);
/// Status topic of one element for one user.
QString element_status(const QString& _root, const QString& _username, const QString& _id);
/// Status topic of one element, without a user level.
QString shared_element_status(const QString& _root, const QString& _id);
/// "<root>/<user>/<path>".
QString response(const QString& _root, const QString& _username, const QString& _path);

}  // namespace interfaces::api_topics
