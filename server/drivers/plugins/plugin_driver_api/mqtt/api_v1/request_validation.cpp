#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/request_validation.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>

namespace interfaces {

namespace {

bool is_filter(const QJsonObject& _filters, const QString& _key) {
    return !_filters.contains(_key) || !_filters.value(_key).toArray().isEmpty();
}

bool has_functions(const QJsonValue& _element) {
    return !_element.toObject().value(QLatin1String("functions")).toObject().isEmpty();
}

}  // namespace

int check_data_request_filters(const QJsonValue& payload) {
    const QJsonValue filters = payload.toObject().value(QLatin1String("filters"));
    if (!filters.isObject()) {
        return 0;
    }
    const QJsonObject keys = filters.toObject();
    return is_filter(keys, QStringLiteral("functions")) && is_filter(keys, QStringLiteral("types"))
               ? 1
               : -1;
}

bool check_data_request_element(const QJsonValue& payload) {
    return has_functions(payload.toObject().value(QLatin1String("data")));
}

bool check_data_request_elements(const QJsonValue& payload) {
    const QJsonValue data = payload.toObject().value(QLatin1String("data"));
    if (!data.isObject()) {
        return false;
    }
    const QJsonObject elements = data.toObject();
    return std::all_of(elements.begin(), elements.end(), has_functions);
}

}  // namespace interfaces
