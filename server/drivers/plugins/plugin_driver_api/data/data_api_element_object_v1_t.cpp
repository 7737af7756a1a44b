#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_v1_t.h"

#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"

namespace interfaces {

data_api_element_object_v1_t::~data_api_element_object_v1_t() = default;

QJsonObject data_api_element_object_v1_t::toJson() {
    return v1::to_json(*this);
}

QJsonObject data_api_element_object_v1_t::toJson(const QString& username, const QJsonObject& filter,
                                                 int& code) {
    return v1::to_json(*this, username, filter, code);
}

QJsonObject data_api_element_object_v1_t::requestSetValue(
    const QString& username, QList<std::pair<QString, QJsonValue>> values, int& code) {
    return v1::request_set_value(*this, username, values, code);
}

}  // namespace interfaces
