// The payload of a request: what the endpoint measures of it, what the filters leave, what a write
// asks the bus for.
#include <QJsonArray>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/api_v1_requests.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/request_validation.h"
#include "endpoint/json_payload.h"
#include "endpoint/request_rules.h"
#include "fuzz/fuzz_home_t.h"
#include "fuzz/fuzz_input.h"

namespace request_rules = comunication::request_rules;
namespace v1 = interfaces::v1;

namespace {

/// A key written twice, or in another way, may be read as another one.
bool is_plain(const QByteArray& _bytes) {
    return _bytes.count("\"uuid\"") == 1 && !_bytes.contains('\\');
}

void judge_uuid(const QByteArray& _bytes, const QJsonObject& _payload) {
    const QString uuid = _payload.value("uuid").toString();
    if (is_plain(_bytes) && uuid.toUtf8().size() <= 1'024) {
        FUZZ_EXPECT(request_rules::uuid_of(_bytes) == uuid);
    }
}

QJsonArray filter(const QJsonObject& _payload, const char* _name) {
    return _payload.value("filters").toObject().value(QLatin1String(_name)).toArray();
}

void judge_filtered(const QJsonObject& _payload, const QJsonObject& _element) {
    const QJsonArray types = filter(_payload, "types");
    const QJsonArray functions = filter(_payload, "functions");
    FUZZ_EXPECT(types.isEmpty() || types.contains(_element.value("type")));
    for (const QString& name : _element.value("functions").toObject().keys()) {
        FUZZ_EXPECT(functions.isEmpty() || functions.contains(name.section('/', -1)));
    }
}

void judge_reads(interfaces::data_api_elements_t* _elements, const QJsonObject& _payload) {
    const QJsonObject all = v1::read_all(_elements, _payload, {"", "alice", "me"});
    const QJsonObject one = v1::read_one(_elements, _payload, {"", "alice", "me", "e-therm"});
    const bool malformed = interfaces::check_data_request_filters(_payload) < 0;
    FUZZ_EXPECT((all.value("error") == 400) == malformed);
    FUZZ_EXPECT((one.value("error") == 400) == malformed);
    for (const QJsonValue& element : all.value("data").toObject()) {
        judge_filtered(_payload, element.toObject());
    }
    if (one.contains("data")) {
        judge_filtered(_payload, one.value("data").toObject());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const QByteArray bytes(reinterpret_cast<const char*>(_data), qsizetype(_size));
    FUZZ_EXPECT(request_rules::uuid_of(bytes).toUtf8().size() <= 3 * 1'024);
    const auto payload = comunication::json_payload::decode(bytes);
    if (!payload) {
        return 0;
    }
    judge_uuid(bytes, *payload);
    const comunication::request_limits_t limits{.filter_entries = 8, .value_bytes = 64};
    const bool too_large = request_rules::is_too_large(*payload, limits);
    FUZZ_EXPECT(!too_large || bytes.size() > 16);
    fuzz_home_t& home = fuzz_home_t::get();
    judge_reads(&home.elements, *payload);
    home.database.item_requests.clear();
    v1::write_one(&home.elements, *payload, {"", "alice", "me", "e-lamp"});
    v1::write_many(&home.elements, *payload, {"", "alice", "me"});
    for (const auto& [item, value] : home.database.item_requests) {
        FUZZ_EXPECT(item == "i-lamp" || item == "i-dim");
        FUZZ_EXPECT(too_large || value.toUtf8().size() <= 1'024);
    }
    return 0;
}
