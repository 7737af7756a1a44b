#include "bench/cases/lane_t.h"

#include <utility>

#include "bench/cases/beside.h"
#include "bench/measure/json_array.h"
#include "bench/measure/process_use.h"
#include "bench/measure/statistics.h"

namespace bench {

using base::result_t;

lane_t::lane_t(QString _name, std::unique_ptr<load_t> _load, QList<process_t> _processes)
    : name(std::move(_name)),
      processes(std::move(_processes)),
      load(std::move(_load)),
      costs(std::size_t(processes.size())) {}

result_t lane_t::sign_in() {
    return beside([this]() { return load->sign_in(); })
               ? result_t()
               : result_t::failed(QStringLiteral("%1: a user was not let in.").arg(name));
}

result_t lane_t::run(bool _counts) {
    std::vector<double> before;
    for (const process_t& process : processes) {
        before.push_back(processor_us(process.pid));
    }
    load_result_t result;
    const bool all = beside([&]() { return load->run(&result); });
    if (!all) {
        return result_t::failed(QStringLiteral("%1: not everything was done in time; %2 was.")
                                    .arg(name, QString::number(result.waits.size())));
    }
    if (result.errors > 0) {
        return result_t::failed(
            QStringLiteral("%1: %2 of %3 requests were refused.")
                .arg(name, QString::number(result.errors), QString::number(result.waits.size())));
    }
    size = result.bytes;
    if (_counts) {
        note(result, before);
    }
    return {};
}

void lane_t::note(const load_result_t& _result, const std::vector<double>& _before) {
    const double count = double(_result.waits.size());
    rates.push_back(count / _result.seconds);
    medians.push_back(median(_result.waits));
    p99s.push_back(quantile(_result.waits, 0.99));
    for (std::size_t i = 0; i < costs.size(); ++i) {
        costs[i].push_back((processor_us(processes[qsizetype(i)].pid) - _before[i]) / count);
    }
    all_waits.insert(all_waits.end(), _result.waits.begin(), _result.waits.end());
}

QJsonObject lane_t::json() const {
    QJsonObject cpu;
    for (std::size_t i = 0; i < costs.size(); ++i) {
        cpu.insert(processes[qsizetype(i)].name, json_array(costs[i]));
    }
    return {{"name", name},
            {"rate", json_array(rates)},
            {"median", json_array(medians)},
            {"p99", json_array(p99s)},
            {"cpu", cpu},
            {"latencies", json_array(percentiles(all_waits))}};
}

}  // namespace bench
