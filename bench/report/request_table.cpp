#include "bench/report/request_table.h"

#include <QJsonObject>

#include "bench/measure/json_array.h"
#include "bench/measure/statistics.h"
#include "bench/report/markdown.h"

namespace bench {

namespace {

QString name_of(const QJsonObject& _row) {
    return QStringLiteral("%1, %2 elements, QoS %3, %4 x %5")
        .arg(_row["operation"].toString())
        .arg(_row["elements"].toInt())
        .arg(_row["qos"].toInt())
        .arg(_row["users"].toInt())
        .arg(_row["in_flight"].toInt());
}

/// A rate with its ratio to the server's, "1,234 (0.94)"; a dash where there was no such lane.
QString rate_beside(const QJsonObject& _row, const QString& _lane) {
    const QJsonObject lane = lane_of(_row, _lane);
    return lane.isEmpty() ? QStringLiteral("-")
                          : QStringLiteral("%1 (%2)").arg(
                                figure(middle(lane, "rate")),
                                figure(ratio(lane_of(_row, "torlan"), lane, "rate")));
}

QString cost(const QJsonObject& _row, const QString& _lane, const QString& _process) {
    return figure(median(numbers_of(lane_of(_row, _lane)["cpu"][_process].toArray())));
}

}  // namespace

QJsonObject lane_of(const QJsonObject& _row, const QString& _name) {
    const QJsonArray lanes = _row["lanes"].toArray();
    for (const auto& lane : lanes) {
        if (lane.toObject()["name"].toString() == _name) {
            return lane.toObject();
        }
    }
    return {};
}

double ratio(const QJsonObject& _ours, const QJsonObject& _theirs, const QString& _key) {
    return median(ratios(numbers_of(_ours[_key].toArray()), numbers_of(_theirs[_key].toArray())));
}

double middle(const QJsonObject& _lane, const QString& _key) {
    return median(numbers_of(_lane[_key].toArray()));
}

QString request_table(const QJsonArray& _rows) {
    QList<QStringList> rows;
    for (const auto& each : _rows) {
        const QJsonObject row = each.toObject();
        const QJsonObject ours = lane_of(row, "torlan");
        const QJsonObject raw = lane_of(row, "raw tcp");
        rows.append({name_of(row), figure(middle(ours, "rate")), rate_beside(row, "raw tcp"),
                     rate_beside(row, "raw unix"), rate_beside(row, "raw tcp, qos 0 back"),
                     figure(middle(ours, "median")), figure(ratio(ours, raw, "median")),
                     figure(middle(ours, "p99")), figure(ratio(ours, raw, "p99"))});
    }
    return markdown_table(
        {"request, users x in flight", "a second", "raw TCP (ratio)", "raw unix (ratio)",
         "raw QoS 0 (ratio)", "median, us", "of raw TCP", "p99, us", "of raw TCP"},
        rows);
}

QString request_cost_table(const QJsonArray& _rows) {
    QList<QStringList> rows;
    for (const auto& each : _rows) {
        const QJsonObject row = each.toObject();
        rows.append({name_of(row), cost(row, "torlan", "server"), cost(row, "torlan", "broker"),
                     cost(row, "raw tcp", "echo"), cost(row, "raw tcp", "broker"),
                     cost(row, "raw unix", "echo"), cost(row, "raw unix", "broker")});
    }
    return markdown_table({"us a request", "server", "its broker", "raw TCP echo", "its broker",
                           "raw unix echo", "its broker"},
                          rows);
}

}  // namespace bench
