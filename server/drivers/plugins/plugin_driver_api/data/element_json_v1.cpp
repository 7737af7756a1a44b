#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"

#include <QJsonArray>

#include "database/permission.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"

namespace interfaces::v1 {

using namespace database::permission;

namespace {

/// An empty list lets everything pass.
bool passes(const QJsonArray& _filter, const QJsonValue& _value) {
    return _filter.isEmpty() || _filter.contains(_value);
}

QJsonObject functions_json(const QHash<QString, QString>& _values, const QJsonArray& _filter) {
    QJsonObject functions;
    for (auto value = _values.cbegin(); value != _values.cend(); ++value) {
        const QString last_segment = value.key().section(QLatin1Char('/'), -1);
        if (passes(_filter, last_segment)) {
            functions.insert(value.key(), QJsonObject{{QStringLiteral("value"), *value}});
        }
    }
    return functions;
}

QJsonObject element_json(const data_api_element_object_t& _element, const QJsonArray& _functions) {
    return {
        {QStringLiteral("name"), _element.getNameElement()},
        {QStringLiteral("type"), _element.getTypeElement()},
        {QStringLiteral("functions"), functions_json(_element.getFunctionValues(), _functions)}};
}

}  // namespace

QJsonObject to_json(const data_api_element_object_t& _element) {
    return element_json(_element, {});
}

QJsonObject to_json(data_api_element_object_t& _element, const QString& _username,
                    const QJsonObject& _filter, int& _code) {
    if (!_element.check_authorization(_username, read_bit)) {
        _code = code_unauthorized;
        return {{QStringLiteral("error"), code_unauthorized}};
    }
    _code = code_accepted;
    if (!passes(_filter.value(QLatin1String("types")).toArray(), _element.getTypeElement())) {
        return {};
    }
    return element_json(_element, _filter.value(QLatin1String("functions")).toArray());
}

QJsonObject to_json(data_api_elements_t& _elements, const QString& _username,
                    const QJsonObject& _filter) {
    QJsonObject result;
    _elements.for_each_element([&](const QString& id, data_api_element_object_t& element) {
        int code = 0;
        const QJsonObject json = to_json(element, _username, _filter, code);
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
