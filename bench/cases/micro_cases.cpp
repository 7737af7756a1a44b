#include "bench/cases/micro_cases.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "bench/cases/progress.h"
#include "bench/measure/json_array.h"
#include "kit/end_with_test.h"

namespace bench {

namespace {

using base::result_t;

constexpr int longest_ms = 300'000;

QJsonObject read(QProcess* _program) {
    return QJsonDocument::fromJson(_program->readAllStandardOutput()).object();
}

}  // namespace

result_t measure_micro(const run_plan_t& _plan, QJsonArray* _results) {
    tell("single steps of the plugin");
    const QString program = QStringLiteral(TORLAN_BENCH_MICRO);
    if (!QFile::exists(program)) {
        return result_t::failed(
            "Google Benchmark was not installed when this was built; install "
            "libbenchmark-dev.");
    }
    QProcess micro;
    kit::end_with_test(&micro);
    micro.start(
        program,
        {"--benchmark_format=json", QStringLiteral("--benchmark_repetitions=%1").arg(_plan.rounds),
         _plan.smallest ? "--benchmark_min_time=0.001" : "--benchmark_min_time=0.1"});
    if (!micro.waitForFinished(longest_ms) || micro.exitCode() != 0) {
        return result_t::failed("torlan-bench-micro has failed.");
    }
    const QJsonArray all = read(&micro)["benchmarks"].toArray();
    for (const auto& each : all) {
        const QJsonObject figure = each.toObject();
        if (figure["aggregate_name"].toString() == "median" || _plan.rounds == 1) {
            _results->append(QJsonObject{{"name", figure["run_name"].toString()},
                                         {"ns", rounded(figure["cpu_time"].toDouble())}});
        }
    }
    return {};
}

}  // namespace bench
