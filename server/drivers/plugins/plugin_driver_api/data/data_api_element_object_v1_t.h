#pragma once

#include <QList>

#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"

namespace interfaces {

/// An element with its version 1 JSON; see element_json_v1.h, which does the work.
class data_api_element_object_v1_t : public data_api_element_object_t {
    Q_OBJECT

 public:
    using data_api_element_object_t::data_api_element_object_t;
    ~data_api_element_object_v1_t() override;

    using data_api_element_object_t::requestSetValue;

    QJsonObject toJson();
    QJsonObject toJson(const QString& username, const QJsonObject& filter, int& code);
    QJsonObject requestSetValue(const QString& username,
                                QList<std::pair<QString, QJsonValue>> values, int& code);
};

}  // namespace interfaces
