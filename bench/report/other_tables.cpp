#include "bench/report/other_tables.h"

#include <QJsonObject>

#include "bench/measure/json_array.h"
#include "bench/measure/statistics.h"
#include "bench/report/markdown.h"
#include "bench/report/request_table.h"

namespace bench {

namespace {

constexpr double megabyte = 1e6;

QString whole(const QJsonValue& _value) {
    return figure(_value.toDouble());
}

QString megabytes(const QJsonValue& _bytes) {
    return figure(_bytes.toDouble() / megabyte);
}

QString size_of(const QJsonObject& _row) {
    return QStringLiteral("%1 x %2").arg(number_of(_row["elements"].toInt()),
                                         number_of(_row["users"].toInt()));
}

/// A table with a line of cells for each row of results.
QString table(const QStringList& _head, const QJsonArray& _rows,
              QStringList (*_cells)(const QJsonObject& _row)) {
    QList<QStringList> rows;
    for (const auto& row : _rows) {
        rows.append(_cells(row.toObject()));
    }
    return markdown_table(_head, rows);
}

QStringList push_cells(const QJsonObject& _row) {
    const QJsonObject ours = lane_of(_row, "torlan");
    const QJsonObject raw = lane_of(_row, "raw unix");
    return {QStringLiteral("%1, %2").arg(_row["users"].toInt()).arg(_row["at_once"].toInt()),
            figure(middle(ours, "rate")),
            figure(middle(raw, "rate")),
            figure(ratio(ours, raw, "rate")),
            figure(middle(ours, "median")),
            figure(ratio(ours, raw, "median")),
            figure(middle(ours, "p99")),
            figure(median(numbers_of(ours["cpu"]["server"].toArray()))),
            figure(median(numbers_of(raw["cpu"]["echo"].toArray())))};
}

QStringList storm_cells(const QJsonObject& _row) {
    return {size_of(_row),
            number_of(_row["rate"].toInt()),
            number_of(_row["seconds"].toInt()),
            whole(_row["median_ms"]),
            whole(_row["p99_ms"]),
            whole(_row["longest_ms"]),
            _row["right"].toBool() ? "yes" : "no",
            whole(_row["settling_s"]),
            whole(_row["server_s"]),
            megabytes(_row["server_peak"]),
            megabytes(_row["broker_peak"])};
}

QStringList start_cells(const QJsonObject& _row) {
    const bool complete = _row["heard"] == _row["expected"];
    const double took = _row["start_s"].toDouble();
    return {size_of(_row),
            whole(_row["import_s"]),
            whole(_row["ready_s"]),
            whole(_row["second_ready_s"]),
            complete ? figure(took) : QStringLiteral("never"),
            whole(_row["raw_s"]),
            complete ? figure(took / _row["raw_s"].toDouble()) : QStringLiteral("-"),
            QStringLiteral("%1 of %2")
                .arg(number_of(_row["heard"].toDouble()), number_of(_row["expected"].toDouble())),
            megabytes(_row["server_peak"]),
            megabytes(_row["broker_peak"]),
            megabytes(_row["raw_broker_peak"])};
}

QStringList change_cells(const QJsonObject& _row) {
    return {size_of(_row),
            figure(median(numbers_of(_row["item_ms"].toArray()))),
            whole(_row["bulk_ms"]),
            whole(_row["revoke_ms"]),
            whole(_row["user_removed_ms"]),
            whole(_row["ready_s"])};
}

QStringList micro_cells(const QJsonObject& _row) {
    return {_row["name"].toString(), whole(_row["ns"])};
}

QStringList peer_cells(const QJsonObject& _row) {
    const QJsonObject ours = lane_of(_row, "torlan");
    const QJsonObject peer = lane_of(_row, "node-red");
    return {QStringLiteral("QoS %1, %2 in flight")
                .arg(_row["qos"].toInt())
                .arg(_row["in_flight"].toInt()),
            figure(middle(ours, "rate")),
            figure(middle(peer, "rate")),
            figure(ratio(ours, peer, "rate")),
            figure(middle(ours, "median")),
            figure(middle(peer, "median")),
            figure(ratio(ours, peer, "median"))};
}

/// The server's peak with so many elements and users; 0: not measured.
double peak_of(const QJsonArray& _rows, int _elements, int _users) {
    for (const auto& each : _rows) {
        const QJsonObject row = each.toObject();
        if (row["elements"].toInt() == _elements && row["users"].toInt() == _users) {
            return row["server_resident"].toDouble();
        }
    }
    return 0;
}

}  // namespace

QString push_table(const QJsonArray& _rows) {
    return table({"users, changes at once", "changes a second", "raw", "ratio", "median, us",
                  "of raw", "p99, us", "server, us a change", "raw publisher"},
                 _rows, push_cells);
}

QString storm_table(const QJsonArray& _rows) {
    return table({"elements x users", "a second", "for s", "median, ms", "p99", "longest",
                  "last right", "settled after s", "server, s", "server, MB", "broker, MB"},
                 _rows, storm_cells);
}

QString start_table(const QJsonArray& _rows) {
    return table(
        {"elements x users", "import, s", "to ready, s", "second, s", "driver to last, s", "raw, s",
         "ratio", "states", "server peak, MB", "broker peak, MB", "raw broker, MB"},
        _rows, start_cells);
}

QString memory_table(const QJsonArray& _rows) {
    constexpr int few = 1'000;
    constexpr int many = 10'000;
    const auto grown = [&](int _users) {
        return (peak_of(_rows, many, _users) - peak_of(_rows, few, _users)) / (many - few);
    };
    const double one = grown(1);
    return markdown_table({"server's resident memory", "bytes"},
                          {{"per element, one user", figure(one)},
                           {"per element, 10 users", figure(grown(10))},
                           {"per element, 100 users", figure(grown(100))},
                           {"per element and further user", figure((grown(100) - one) / 99)}});
}

QString change_table(const QJsonArray& _rows) {
    return table({"elements x users", "one item, ms", "all names at once, ms", "one revoke, ms",
                  "one user removed, ms", "to ready, s"},
                 _rows, change_cells);
}

QString micro_table(const QJsonArray& _rows) {
    return table({"step", "ns"}, _rows, micro_cells);
}

QString peer_table(const QJsonArray& _rows) {
    return table(
        {"read one, 1 user", "torlan", "Node-RED", "ratio", "median, us", "Node-RED", "ratio"},
        _rows, peer_cells);
}

}  // namespace bench
