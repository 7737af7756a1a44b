#include "drivers/plugins/plugin_driver_api/data/element_filter_t.h"

#include <QJsonArray>

namespace interfaces {

element_filter_t::element_filter_t() = default;

element_filter_t::element_filter_t(const QJsonObject& _filter) {
    const QJsonArray type_list = _filter.value(QLatin1String("types")).toArray();
    filters_types = !type_list.isEmpty();
    for (const QJsonValue& type : type_list) {
        if (type.isDouble()) {
            types.insert(type.toDouble());
        }
    }
    const QJsonArray function_list = _filter.value(QLatin1String("functions")).toArray();
    filters_functions = !function_list.isEmpty();
    for (const QJsonValue& function : function_list) {
        if (function.isString()) {
            functions.insert(function.toString());
        }
    }
}

bool element_filter_t::passes_type(int _type) const {
    return !filters_types || types.contains(_type);
}

bool element_filter_t::passes_function(const QString& _function) const {
    return !filters_functions || functions.contains(_function.section(QLatin1Char('/'), -1));
}

}  // namespace interfaces
