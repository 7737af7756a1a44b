#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_packets.h"

#include "database/permission.h"

namespace interfaces::v1 {

using database::permission::code_not_found;
using database::permission::code_unauthorized;

QJsonObject data_packet(const QJsonObject& _data) {
    return {{QStringLiteral("data"), _data}};
}

QJsonObject update_packet(const QJsonObject& _json) {
    return _json.isEmpty() ? QJsonObject() : data_packet(_json);
}

QJsonObject error_packet(QJsonObject _packet, int _code, const QString& _message) {
    _packet.insert(QStringLiteral("error"), _code);
    _packet.insert(QStringLiteral("message"), _message);
    return _packet;
}

QJsonObject non_compliant_topic() {
    return error_packet({}, 400, QStringLiteral("Non-compliant topic"));
}

QJsonObject non_compliant_payload() {
    return error_packet({}, 400, QStringLiteral("Non-compliant payload"));
}

QJsonObject unauthorized_user() {
    return error_packet({}, code_unauthorized,
                        QStringLiteral("Unauthorized user: configure user API on App"));
}

QJsonObject not_found_element(const QString& _id) {
    return error_packet({}, code_not_found, QStringLiteral("Not found element ") + _id);
}

QJsonObject non_found_element(const QString& _id) {
    return error_packet({}, code_not_found, QStringLiteral("Non found element ") + _id);
}

QJsonObject topic_not_valid() {
    return error_packet({}, 405, QStringLiteral("Topic not valid"));
}

QJsonObject presentation_required() {
    return error_packet({}, 406, QStringLiteral("Presentation required"));
}

QJsonObject filter_type_error() {
    return error_packet({}, 409, QStringLiteral("Filter type error"));
}

}  // namespace interfaces::v1
