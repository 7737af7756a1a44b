#include "bench/report/plots.h"

#include <QJsonArray>
#include <QtTest>

using namespace bench;

class tst_plots : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void there_are_plots_of_what_was_measured() {
        QVERIFY(plots_of({}).isEmpty());
        const QJsonObject row{{"elements", 100},
                              {"users", 10},
                              {"item_ms", QJsonArray{1, 3, 2}},
                              {"server_peak", 5e6}};
        const QJsonArray rows{row};
        const auto plots = plots_of({{"changes", rows}, {"starts", rows}});
        QCOMPARE(plots.size(), 2);
        QCOMPARE(plots[0].lines[0].points, QList<QPointF>{QPointF(100, 2)});
        QCOMPARE(plots[1].lines[0].points, QList<QPointF>{QPointF(100, 5)});
    }

    void a_script_has_every_point_and_line() {
        plot_t plot{
            "f", "Title", "x", "y", true, false, {{"one", {{1, 2}}}, {"two's", {{3, 4.5}}}}};
        const QString script = plot_script(plot, "/out.svg");
        for (const char* part : {"set output '/out.svg'\n", "set logscale x\n", "1 2\n", "3 4.5\n",
                                 "$line0 with", "$line1 with", "title 'two''s'"}) {
            QVERIFY2(script.contains(QLatin1String(part)), part);
        }
        QVERIFY(!script.contains("set logscale y"));
    }
};

QTEST_GUILESS_MAIN(tst_plots)
#include "tst_plots.moc"
