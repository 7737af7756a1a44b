#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"

#include "database/permission.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_filter_t.h"

namespace interfaces::v1 {

using namespace database::permission;

namespace {

QJsonObject functions_json(const base::small_table_t<QString>& _values,
                           const element_filter_t& _filter) {
    QJsonObject functions;
    for (const auto& row : _values) {
        if (_filter.passes_function(row.key)) {
            functions.insert(row.key, QJsonObject{{QStringLiteral("value"), row.value}});
        }
    }
    return functions;
}

QJsonObject element_json(const data_api_element_object_t& _element,
                         const element_filter_t& _filter) {
    return {{QStringLiteral("name"), _element.getNameElement()},
            {QStringLiteral("type"), _element.getTypeElement()},
            {QStringLiteral("functions"), functions_json(_element.values(), _filter)}};
}

QJsonObject filtered_json(data_api_element_object_t& _element, const QString& _username,
                          const element_filter_t& _filter, int& _code) {
    if (!_element.check_authorization(_username, read_bit)) {
        _code = code_unauthorized;
        return {{QStringLiteral("error"), code_unauthorized}};
    }
    _code = code_accepted;
    return _filter.passes_type(_element.getTypeElement()) ? element_json(_element, _filter)
                                                          : QJsonObject();
}

}  // namespace

QJsonObject to_json(const data_api_element_object_t& _element) {
    return element_json(_element, {});
}

QJsonObject to_json(data_api_element_object_t& _element, const QString& _username,
                    const QJsonObject& _filter, int& _code) {
    return filtered_json(_element, _username, element_filter_t(_filter), _code);
}

QJsonObject to_json(data_api_elements_t& _elements, const QString& _username,
                    const QJsonObject& _filter) {
    const element_filter_t filter(_filter);
    QJsonObject result;
    _elements.for_each_element([&](const QString& id, data_api_element_object_t& element) {
        int code = 0;
        const QJsonObject json = filtered_json(element, _username, filter, code);
        if (code == code_accepted && !json.value(QLatin1String("functions")).toObject().isEmpty()) {
            result.insert(id, json);
        }
    });
    return result;
}

QJsonObject request_set_value(data_api_element_object_t& _element, const QString& _username,
                              const QList<std::pair<QString, QJsonValue>>& _values, int& _code) {
    if (!_element.check_authorization(_username, write_bit)) {
        _code = code_unauthorized;
        return {{QStringLiteral("error"), code_unauthorized},
                {QStringLiteral("message"), QStringLiteral("Configure user on API on App")}};
    }
    _code = code_accepted;
    QJsonObject statuses;
    for (const auto& value : _values) {
        const int status = _element.requestSetValue(value) ? code_accepted : code_not_found;
        statuses.insert(value.first, QString::number(status));
    }
    return {{QStringLiteral("functions"), statuses}};
}

}  // namespace interfaces::v1
