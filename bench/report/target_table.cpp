#include "bench/report/target_table.h"

#include <QJsonArray>
#include <algorithm>
#include <functional>
#include <optional>

#include "bench/measure/json_array.h"
#include "bench/measure/statistics.h"
#include "bench/report/markdown.h"
#include "bench/report/request_table.h"

namespace bench {

namespace {

using measured_t = std::optional<double>;

enum class bound_t { at_least, at_most };

struct target_t {
    QString what;
    bound_t bound;
    double limit;
    measured_t measured;
};

/// The worst over the rows that fit, or nothing when there is none.
measured_t worst(const QJsonArray& _rows, bound_t _bound,
                 const std::function<measured_t(const QJsonObject& _row)>& _of) {
    measured_t found;
    for (const auto& row : _rows) {
        const measured_t one = _of(row.toObject());
        if (one && (!found || (_bound == bound_t::at_most ? *one > *found : *one < *found))) {
            found = one;
        }
    }
    return found;
}

measured_t read_one(const QJsonObject& _results, int _in_flight, const QString& _key,
                    bound_t _bound) {
    return worst(_results["requests"].toArray(), _bound, [&](const QJsonObject& _row) {
        const bool fits = _row["operation"] == "read one" && _row["users"] == 1 &&
                          _row["in_flight"] == _in_flight;
        return fits ? measured_t(ratio(lane_of(_row, "torlan"), lane_of(_row, "raw tcp"), _key))
                    : measured_t();
    });
}

measured_t processor_ratio(const QJsonObject& _results) {
    return worst(_results["requests"].toArray(), bound_t::at_most, [](const QJsonObject& _row) {
        const auto cost = [&](const char* _lane, const char* _process) {
            return numbers_of(
                lane_of(_row, QLatin1String(_lane))["cpu"][QLatin1String(_process)].toArray());
        };
        return _row["operation"] == "read one" && _row["users"] == 1 && _row["in_flight"] == 100
                   ? measured_t(median(ratios(cost("torlan", "server"), cost("raw tcp", "echo"))))
                   : measured_t();
    });
}

/// What @p _of says of the row with so many elements and users.
measured_t in_row(const QJsonObject& _results, const QString& _section, int _elements, int _users,
                  const std::function<double(const QJsonObject& _row)>& _of) {
    return worst(_results[_section].toArray(), bound_t::at_most, [&](const QJsonObject& _row) {
        return _row["elements"] == _elements && _row["users"] == _users ? measured_t(_of(_row))
                                                                        : measured_t();
    });
}

std::function<double(const QJsonObject&)> value(const QString& _key, double _unit = 1) {
    return [=](const QJsonObject& _row) { return _row[_key].toDouble() / _unit; };
}

double item_ms(const QJsonObject& _row) {
    return median(numbers_of(_row["item_ms"].toArray()));
}

measured_t start_ratio(const QJsonObject& _results) {
    constexpr int least_states = 10'000;
    return worst(_results["starts"].toArray(), bound_t::at_most, [](const QJsonObject& _row) {
        return _row["expected"].toDouble() >= least_states && _row["heard"] == _row["expected"]
                   ? measured_t(_row["start_s"].toDouble() / _row["raw_s"].toDouble())
                   : measured_t();
    });
}

measured_t push_ratio(const QJsonObject& _results) {
    return worst(_results["pushes"].toArray(), bound_t::at_least, [](const QJsonObject& _row) {
        return measured_t(ratio(lane_of(_row, "torlan"), lane_of(_row, "raw unix"), "rate"));
    });
}

/// Seconds an element: of the largest installation in terms of one of a thousand.
measured_t linearity(const QJsonObject& _results) {
    const auto small = in_row(_results, "changes", 1'000, 10, value("ready_s", 1'000));
    const auto large = in_row(_results, "changes", 30'000, 10, value("ready_s", 30'000));
    return small && large ? measured_t(*large / *small) : measured_t();
}

measured_t peer(const QJsonObject& _results, const QString& _key) {
    return worst(_results["peer"].toArray(), bound_t::at_most, [&](const QJsonObject& _row) {
        return _row["qos"] == 0 && _row["in_flight"] == 100
                   ? measured_t(ratio(lane_of(_row, "torlan"), lane_of(_row, "node-red"), _key))
                   : measured_t();
    });
}

QList<target_t> request_targets(const QJsonObject& _results) {
    using enum bound_t;
    return {{"read one, 100 in flight: rate, of raw TCP", at_least, 1.0,
             read_one(_results, 100, "rate", at_least)},
            {"read one, 100 in flight: p99, of raw TCP", at_most, 1.1,
             read_one(_results, 100, "p99", at_most)},
            {"read one, one in flight: median, of raw TCP", at_most, 1.0,
             read_one(_results, 1, "median", at_most)},
            {"read one: processor time, of a raw echo's", at_most, 1.0, processor_ratio(_results)},
            {"read one at QoS 0: rate, of Node-RED", at_least, 1.5, peer(_results, "rate")},
            {"read one at QoS 0: median, of Node-RED", at_most, 0.5, peer(_results, "median")}};
}

QList<target_t> scale_targets(const QJsonObject& _results) {
    using enum bound_t;
    const auto heard = [](const QJsonObject& _row) {
        return _row["heard_at_ready"].toDouble() / _row["expected"].toDouble();
    };
    return {{"push: rate, of raw", at_least, 0.9, push_ratio(_results)},
            {"start of 10,000 states and more: time, of raw", at_most, 1.3, start_ratio(_results)},
            {"10,000 x 100: part of the states that is there when \"ready\" is said", at_least, 1.0,
             in_row(_results, "starts", 10'000, 100, heard)},
            {"10,000 x 100: server's peak, MB", at_most, 500,
             in_row(_results, "starts", 10'000, 100, value("server_peak", 1e6))},
            {"10,000 x 10: server's peak, MB", at_most, 150,
             in_row(_results, "starts", 10'000, 10, value("server_peak", 1e6))},
            {"60 changes a second, 10,000 elements: median, ms", at_most, 100,
             in_row(_results, "storms", 10'000, 3, value("median_ms"))},
            {"1,000 changes a second, 300 elements: longest, ms", at_most, 3'000,
             in_row(_results, "storms", 300, 10, value("longest_ms"))},
            {"one item, 10,000 elements: processor time, ms", at_most, 10,
             in_row(_results, "changes", 10'000, 10, item_ms)},
            {"one item, 1,000 elements: processor time, ms", at_most, 1,
             in_row(_results, "changes", 1'000, 10, item_ms)},
            {"a user removed, 10,000 x 10: processor time, s", at_most, 1,
             in_row(_results, "changes", 10'000, 10, value("user_removed_ms", 1'000))},
            {"to ready per element, 30,000 elements, of 1,000", at_most, 1.1, linearity(_results)}};
}

QStringList cells(const target_t& _target) {
    const bool at_most = _target.bound == bound_t::at_most;
    const QString limit = (at_most ? "at most " : "at least ") + figure(_target.limit);
    if (!_target.measured) {
        return {_target.what, limit, "not measured", "no"};
    }
    const bool met =
        at_most ? *_target.measured <= _target.limit : *_target.measured >= _target.limit;
    return {_target.what, limit, figure(*_target.measured), met ? "yes" : "no"};
}

}  // namespace

QString target_table(const QJsonObject& _results) {
    QList<QStringList> rows;
    for (const target_t& target : request_targets(_results) + scale_targets(_results)) {
        rows.append(cells(target));
    }
    return markdown_table({"target", "limit", "measured", "met"}, rows);
}

}  // namespace bench
