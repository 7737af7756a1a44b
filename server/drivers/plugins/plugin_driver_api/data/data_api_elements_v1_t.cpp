#include "drivers/plugins/plugin_driver_api/data/data_api_elements_v1_t.h"

#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"

namespace interfaces {

data_api_elements_v1_t::~data_api_elements_v1_t() = default;

QJsonObject data_api_elements_v1_t::toJson(const QString& username, const QJsonObject& filter) {
    return v1::to_json(*this, username, filter);
}

}  // namespace interfaces
