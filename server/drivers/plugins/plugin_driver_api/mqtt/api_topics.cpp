#include "drivers/plugins/plugin_driver_api/mqtt/api_topics.h"

namespace interfaces::api_topics {

const QString identifier = QStringLiteral("[0-9a-zA-Z._-]+");
const QString get_path = QStringLiteral("request/get/elements/objects_list");
const QString set_path = QStringLiteral("request/set/elements/objects_list");
const QString status_path = QStringLiteral("status/elements/objects_list");

QString root(const QString& _version) {
    return QStringLiteral("%1/api/%2").arg(QStringLiteral("local"), _version);
}

QString list_pattern(const QString& _root, const QString& _path) {
    return QStringLiteral("^%1/(%2)/(%3)/%4$").arg(_root, identifier, identifier, _path);
}

QString element_pattern(const QString& _root, const QString& _path) {
    return QStringLiteral("^%1/(%2)/(%3)/%4/(%5)$")
        .arg(_root, identifier, identifier, _path, identifier);
}

QString retained_pattern(const QString& _root) {
    return QStringLiteral("^%1/(%2)/%3/(%4)$").arg(_root, identifier, status_path, identifier);
}

QString user_status(const QString& _root, const QString& _username) {
    return QStringLiteral("%1/%2/status/elements/objects_list").arg(_root, _username);
}

QString element_status(const QString& _root, const QString& _username, const QString& _id) {
    return QStringLiteral("%1/%2/status/elements/objects_list/%3").arg(_root, _username, _id);
}

QString shared_element_status(const QString& _root, const QString& _id) {
    return QStringLiteral("%1/status/elements/objects_list/%2").arg(_root, _id);
}

QString response(const QString& _root, const QString& _username, const QString& _path) {
    return QStringLiteral("%1/%2/%3").arg(_root, _username, _path);
}

}  // namespace interfaces::api_topics
