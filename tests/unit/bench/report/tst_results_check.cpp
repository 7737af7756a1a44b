#include "bench/report/results_check.h"

#include <QJsonArray>
#include <QtTest>

using namespace bench;

namespace {

QJsonArray rounds(int _count) {
    QJsonArray array;
    for (int i = 0; i < _count; ++i) {
        array.append(1);
    }
    return array;
}

QJsonObject lane(int _rounds) {
    return {
        {"name", "torlan"}, {"rate", rounds(9)}, {"median", rounds(9)}, {"p99", rounds(_rounds)}};
}

QJsonObject results(int _rounds_of_lane = 9) {
    const QJsonArray row{QJsonObject{{"lanes", QJsonArray{lane(9), lane(_rounds_of_lane)}}}};
    return {{"format", 1},     {"smallest", false}, {"rounds", 9},
            {"requests", row}, {"pushes", row},     {"storms", row},
            {"starts", row},   {"changes", row},    {"micro", row}};
}

QJsonObject but(const QString& _key, const QJsonValue& _value) {
    QJsonObject made = results();
    made.insert(_key, _value);
    return made;
}

}  // namespace

/// No document is made of what was measured by halves.
class tst_results_check : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void whole_results_pass() { QCOMPARE(check_results(results()).error, QString()); }

    void incomplete_results_are_refused_data() {
        QTest::addColumn<QJsonObject>("given");
        QTest::addColumn<QString>("error");
        const QString foreign = "These are no results of torlan-bench, or of another version.";
        const QString small = "The results are of the smallest run, which says nothing.";
        QTest::newRow("nothing") << QJsonObject() << foreign;
        QTest::newRow("another format") << but("format", 2) << foreign;
        QTest::newRow("smallest") << but("smallest", true) << small;
        QTest::newRow("smallest or not") << but("smallest", QJsonValue::Undefined) << small;
        QTest::newRow("few rounds")
            << but("rounds", 3) << "The results are of 3 rounds, 9 are needed.";
        QTest::newRow("more rounds than measured")
            << but("rounds", 10) << "\"rate\" of \"torlan\" in \"requests\" is not of 10 rounds.";
        for (const char* section : {"requests", "pushes", "storms", "starts", "changes", "micro"}) {
            QTest::newRow(section) << but(section, QJsonArray())
                                   << QStringLiteral("The results have no \"%1\".").arg(section);
        }
        QTest::newRow("a lane cut short")
            << results(8) << "\"p99\" of \"torlan\" in \"requests\" is not of 9 rounds.";
    }
    void incomplete_results_are_refused() {
        QFETCH(QJsonObject, given);
        QTEST(check_results(given).error, "error");
    }
};

QTEST_GUILESS_MAIN(tst_results_check)
#include "tst_results_check.moc"
