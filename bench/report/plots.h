#pragma once

#include <QJsonObject>
#include <QList>
#include <QPointF>
#include <QString>

#include "base/result_t.h"

namespace bench {

/// One plot: lines with points, by default on plain axes.
struct plot_t {
    struct line_t {
        QString name;
        QList<QPointF> points;
    };

    QString file;  ///< name without ".svg"
    QString title;
    QString x;
    QString y;
    bool x_log = false;
    bool y_log = false;
    QList<line_t> lines;
};

/// Latency distributions, cost against N, memory against N; those that there are figures for.
QList<plot_t> plots_of(const QJsonObject& _results);

/// What gnuplot draws @p _plot of, an SVG at @p _path. Pure.
QString plot_script(const plot_t& _plot, const QString& _path);

/// Draws them into @p _folder, with gnuplot.
base::result_t draw(const QList<plot_t>& _plots, const QString& _folder);

}  // namespace bench
