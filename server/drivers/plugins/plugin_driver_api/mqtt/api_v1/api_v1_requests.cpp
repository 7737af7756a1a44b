#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_requests.h"

#include <QJsonArray>

#include "database/permission.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_packets.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/request_validation.h"

namespace interfaces::v1 {

using database::permission::code_accepted;

namespace {

constexpr int filters_malformed = -1;
constexpr int filters_valid = 1;

QPointer<data_api_element_object_t> find(data_api_elements_t* _elements, const QString& _id) {
    return _elements != nullptr ? _elements->get_data_api_element_object(_id) : nullptr;
}

QString user_of(const QStringList& _captures) {
    return _captures.value(1);
}

/// {"functions": [...], "types": [...]} of a payload whose filters are valid, else {}.
QJsonObject filter_of(const QJsonObject& _payload, int _check) {
    if (_check != filters_valid) {
        return {};
    }
    const QJsonObject filters = _payload.value(QLatin1String("filters")).toObject();
    const auto entries = [&filters](QLatin1String key) { return filters.value(key).toArray(); };
    return {{QStringLiteral("functions"), entries(QLatin1String("functions"))},
            {QStringLiteral("types"), entries(QLatin1String("types"))}};
}

/// One write of all pairs of {"functions": {F: V}}.
QJsonObject write(data_api_element_object_t& _element, const QString& _username,
                  const QJsonValue& _data) {
    const QJsonObject functions = _data.toObject().value(QLatin1String("functions")).toObject();
    QList<std::pair<QString, QJsonValue>> values;
    for (auto function = functions.begin(); function != functions.end(); ++function) {
        values.append({function.key(), function.value()});
    }
    int code = 0;
    return request_set_value(_element, _username, values, code);
}

}  // namespace

QJsonObject read_all(data_api_elements_t* _elements, const QJsonObject& _payload,
                     const QStringList& _captures) {
    const int check = check_data_request_filters(_payload);
    if (check == filters_malformed) {
        return non_compliant_payload();
    }
    return data_packet(_elements != nullptr
                           ? to_json(*_elements, user_of(_captures), filter_of(_payload, check))
                           : QJsonObject());
}

QJsonObject read_one(data_api_elements_t* _elements, const QJsonObject& _payload,
                     const QStringList& _captures) {
    if (_captures.size() < 3) {
        return non_compliant_topic();
    }
    const QString id = _captures.last();
    const QPointer<data_api_element_object_t> element = find(_elements, id);
    if (element.isNull()) {
        return not_found_element(id);
    }
    const int check = check_data_request_filters(_payload);
    if (check == filters_malformed) {
        return non_compliant_payload();
    }
    int code = 0;
    const QJsonObject json =
        to_json(*element, user_of(_captures), filter_of(_payload, check), code);
    // Before the status: a refused read is never empty, a filtered-out type always is.
    if (check == filters_valid && json.isEmpty()) {
        return filter_type_error();
    }
    return code == code_accepted ? data_packet(json) : unauthorized_user();
}

QJsonObject write_one(data_api_elements_t* _elements, const QJsonObject& _payload,
                      const QStringList& _captures) {
    if (_captures.size() < 3) {
        return non_compliant_topic();
    }
    if (!check_data_request_element(_payload)) {
        return non_compliant_payload();
    }
    const QString id = _captures.last();
    const QPointer<data_api_element_object_t> element = find(_elements, id);
    if (element.isNull()) {
        return not_found_element(id);
    }
    return data_packet(write(*element, user_of(_captures), _payload.value(QLatin1String("data"))));
}

QJsonObject write_many(data_api_elements_t* _elements, const QJsonObject& _payload,
                       const QStringList& _captures) {
    if (_captures.size() < 2) {
        return non_compliant_topic();
    }
    if (!check_data_request_elements(_payload)) {
        return non_compliant_payload();
    }
    const QJsonObject data = _payload.value(QLatin1String("data")).toObject();
    QJsonObject results;
    for (auto entry = data.begin(); entry != data.end(); ++entry) {
        const QPointer<data_api_element_object_t> element = find(_elements, entry.key());
        results.insert(entry.key(), element.isNull()
                                        ? non_found_element(entry.key())
                                        : write(*element, user_of(_captures), entry.value()));
    }
    return data_packet(results);
}

}  // namespace interfaces::v1
