#pragma once

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"

namespace interfaces {

/// The collection with its version 1 JSON; see element_json_v1.h, which does the work.
class data_api_elements_v1_t : public data_api_elements_t {
    Q_OBJECT

 public:
    using data_api_elements_t::data_api_elements_t;
    ~data_api_elements_v1_t() override;

    QJsonObject toJson(const QString& username, const QJsonObject& filter);
};

}  // namespace interfaces
