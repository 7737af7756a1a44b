// torlan-bench-micro: what single steps of the plugin take; Google Benchmark's options.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_topics.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/request_validation.h"
#include "fakes/memory_database_t.h"
#include "router/mqtt_router_t.h"
#include "utility/utility_t.h"

namespace {

using namespace interfaces;

const QString user = QStringLiteral("alice");
const QString some_element = QStringLiteral("e-7");
const QString read_topic =
    QStringLiteral("local/api/v1/alice/me/request/get/elements/objects_list/e-7");
const QString state_topic = QStringLiteral("local/api/v1/alice/status/elements/objects_list/e-7");

/// So many lamps that alice may read and write, loaded, and the API that serves them.
class home_t {
 public:
    explicit home_t(int _lamps) {
        database.set_topic(QStringLiteral("installation/0001"));
        database.add_user(QStringLiteral("u-alice"), user);
        for (int i = 0; i < _lamps; ++i) {
            const QString item = QStringLiteral("i-%1").arg(i);
            const QString element = QStringLiteral("e-%1").arg(i);
            database.add_item(item, QStringLiteral("0"));
            database.add_element(element, QStringLiteral("Lamp %1").arg(i), 1,
                                 {{QStringLiteral("execute"), item}});
            database.grant(QStringLiteral("u-alice"), element, 3);
        }
        elements = std::make_unique<data_api_elements_t>(database.get(), nullptr);
        elements->setEnabled(true);
        api = std::make_unique<mqtt_server_api_v1_t>(elements.get(), nullptr);
        api->setEnable(true);
        api->init_route(true);
    }

    fakes::memory_database_t database;
    std::unique_ptr<data_api_elements_t> elements;
    std::unique_ptr<mqtt_server_api_v1_t> api;
};

void render_one(benchmark::State& _state) {
    home_t home(40);
    const auto element = home.elements->get_data_api_element_object(some_element);
    int code = 0;
    for (auto _ : _state) {
        benchmark::DoNotOptimize(v1::to_json(*element, user, {}, code));
    }
}
BENCHMARK(render_one);

void render_all(benchmark::State& _state) {
    home_t home(int(_state.range(0)));
    for (auto _ : _state) {
        benchmark::DoNotOptimize(v1::to_json(*home.elements, user, {}));
    }
}
BENCHMARK(render_all)->Arg(40)->Arg(1000);

void route_one(benchmark::State& _state) {
    mqtt::mqtt_router_t router;
    const QString root = api_topics::root(QStringLiteral("v1"));
    const auto answer = [](const QString&, const QVariant&, const QStringList&,
                           const QMap<QString, QVariant>&) { return QJsonValue(); };
    for (const QString& path : {api_topics::get_path, api_topics::set_path}) {
        router.route(api_topics::list_pattern(root, path), answer, mqtt::PRIORITY_ROUTE::NORMAL);
        router.route(api_topics::element_pattern(root, path), answer, mqtt::PRIORITY_ROUTE::NORMAL);
    }
    for (auto _ : _state) {
        benchmark::DoNotOptimize(router.process(read_topic, {}, {}));
    }
}
BENCHMARK(route_one);

void answer_one(benchmark::State& _state) {
    home_t home(40);
    for (auto _ : _state) {
        home.api->handlerMessage(user, read_topic, {});
    }
}
BENCHMARK(answer_one);

void validate_write(benchmark::State& _state) {
    const QJsonObject functions{{"functions", QJsonObject{{"execute", "1"}}}};
    const QJsonValue payload = QJsonObject{{"data", functions}};
    for (auto _ : _state) {
        benchmark::DoNotOptimize(check_data_request_element(payload));
    }
}
BENCHMARK(validate_write);

void validate_filters(benchmark::State& _state) {
    const QJsonObject filters{{"types", QJsonArray{8, 17}}, {"functions", QJsonArray{"execute"}}};
    const QJsonValue payload = QJsonObject{{"filters", filters}};
    for (auto _ : _state) {
        benchmark::DoNotOptimize(check_data_request_filters(payload));
    }
}
BENCHMARK(validate_filters);

void permission_verdict(benchmark::State& _state) {
    home_t home(40);
    const auto element = home.elements->get_data_api_element_object(some_element);
    for (auto _ : _state) {
        benchmark::DoNotOptimize(element->check_authorization(user, 2));
    }
}
BENCHMARK(permission_verdict);

void check_retained(benchmark::State& _state) {
    home_t home(40);
    const QJsonObject payload{{"data", QJsonObject{{"type", 1}}}};
    for (auto _ : _state) {
        benchmark::DoNotOptimize(home.api->handlerMessageRetained(user, state_topic, payload));
    }
}
BENCHMARK(check_retained);

void json_path(benchmark::State& _state) {
    const QJsonObject deep{{"a", QJsonObject{{"list", QJsonArray{1, 2, QJsonObject{{"c", 3}}}}}}};
    const QString path = QStringLiteral("a/list[2]/c");
    for (auto _ : _state) {
        benchmark::DoNotOptimize(utility::utility_t::getJsonObjValue(deep, path));
    }
}
BENCHMARK(json_path);

}  // namespace

int main(int _argc, char** _argv) {
    const QCoreApplication application(_argc, _argv);
    benchmark::Initialize(&_argc, _argv);
    if (benchmark::ReportUnrecognizedArguments(_argc, _argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
