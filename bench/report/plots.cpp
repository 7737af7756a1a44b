#include "bench/report/plots.h"

#include <QDir>
#include <QJsonArray>
#include <QMap>
#include <QProcess>

#include "bench/measure/json_array.h"
#include "bench/measure/statistics.h"
#include "bench/report/request_table.h"

namespace bench {

namespace {

using base::result_t;

constexpr int longest_ms = 60'000;

/// A text as gnuplot reads it.
QString quoted(QString _text) {
    return '\'' + _text.replace('\'', "''") + '\'';
}

/// Part of the requests that was answered within a time.
plot_t latency_plot(const QJsonObject& _row) {
    plot_t plot;
    plot.file = QStringLiteral("latency-qos%1-%2-in-flight")
                    .arg(_row["qos"].toInt())
                    .arg(_row["in_flight"].toInt());
    plot.title = QStringLiteral("Read one, QoS %1, %2 in flight")
                     .arg(_row["qos"].toInt())
                     .arg(_row["in_flight"].toInt());
    plot.x = "microseconds";
    plot.y = "% answered";
    plot.x_log = true;
    const QJsonArray lanes = _row["lanes"].toArray();
    for (const auto& lane : lanes) {
        plot_t::line_t line{lane.toObject()["name"].toString(), {}};
        const std::vector<double> times = numbers_of(lane.toObject()["latencies"].toArray());
        for (std::size_t percent = 0; percent < times.size(); ++percent) {
            line.points.append({times[percent], double(percent)});
        }
        plot.lines.append(line);
    }
    return plot;
}

plot_t cost_plot(const QJsonArray& _rows) {
    plot_t plot{
        "cost", "What a change costs the server", "elements", "processor time, ms", true, true, {}};
    for (const auto& [key, name] :
         QList<std::pair<QString, QString>>{{"item_ms", "one item"},
                                            {"bulk_ms", "all names at once"},
                                            {"revoke_ms", "one revoke"},
                                            {"user_removed_ms", "one user removed"}}) {
        plot_t::line_t line{name, {}};
        for (const auto& each : _rows) {
            const QJsonObject row = each.toObject();
            const double cost =
                row[key].isArray() ? median(numbers_of(row[key].toArray())) : row[key].toDouble();
            line.points.append({row["elements"].toDouble(), cost});
        }
        plot.lines.append(line);
    }
    return plot;
}

plot_t memory_plot(const QJsonArray& _rows) {
    plot_t plot{"memory", "The server's peak memory after a start", "elements", "MB", true, true,
                {}};
    QMap<int, plot_t::line_t> lines;
    for (const auto& each : _rows) {
        const QJsonObject row = each.toObject();
        const int users = row["users"].toInt();
        lines[users].name = QStringLiteral("%1 users").arg(users);
        lines[users].points.append(
            {row["elements"].toDouble(), row["server_peak"].toDouble() / 1e6});
    }
    plot.lines = lines.values();
    return plot;
}

}  // namespace

QList<plot_t> plots_of(const QJsonObject& _results) {
    QList<plot_t> plots;
    const QJsonArray requests = _results["requests"].toArray();
    for (const auto& each : requests) {
        const QJsonObject row = each.toObject();
        if (row["operation"] == "read one" && row["users"] == 1) {
            plots.append(latency_plot(row));
        }
    }
    if (const QJsonArray changes = _results["changes"].toArray(); !changes.isEmpty()) {
        plots.append(cost_plot(changes));
    }
    if (const QJsonArray starts = _results["starts"].toArray(); !starts.isEmpty()) {
        plots.append(memory_plot(starts));
    }
    return plots;
}

QString plot_script(const plot_t& _plot, const QString& _path) {
    QString text =
        QStringLiteral(
            "set terminal svg size 720,420 noenhanced font 'sans,13' background 'white'\n"
            "set output %1\nset title %2\nset xlabel %3\nset ylabel %4\n"
            "set grid\nset key below\n")
            .arg(quoted(_path), quoted(_plot.title), quoted(_plot.x), quoted(_plot.y));
    text += _plot.x_log ? "set logscale x\n" : "";
    text += _plot.y_log ? "set logscale y\n" : "";
    QStringList parts;
    for (qsizetype i = 0; i < _plot.lines.size(); ++i) {
        text += QStringLiteral("$line%1 << END\n").arg(i);
        for (const QPointF& point : _plot.lines[i].points) {
            text += QStringLiteral("%1 %2\n").arg(point.x()).arg(point.y());
        }
        text += "END\n";
        parts += QStringLiteral("$line%1 with linespoints pt 7 ps 0.3 lw 2 title %2")
                     .arg(i)
                     .arg(quoted(_plot.lines[i].name));
    }
    return text + "plot " + parts.join(", ") + '\n';
}

result_t draw(const QList<plot_t>& _plots, const QString& _folder) {
    if (!QDir().mkpath(_folder)) {
        return result_t::failed(QStringLiteral("The folder %1 cannot be made.").arg(_folder));
    }
    for (const plot_t& plot : _plots) {
        const QString path = QDir(_folder).filePath(plot.file + ".svg");
        QProcess gnuplot;
        gnuplot.start("gnuplot", QStringList());
        gnuplot.write(plot_script(plot, path).toUtf8());
        gnuplot.closeWriteChannel();
        if (!gnuplot.waitForFinished(longest_ms) || gnuplot.exitCode() != 0) {
            return result_t::failed(
                QStringLiteral("gnuplot did not draw %1: %2")
                    .arg(path, QString::fromUtf8(gnuplot.readAllStandardError()).simplified()));
        }
    }
    return {};
}

}  // namespace bench
