#include "doctor/findings.h"

#include <QTest>

using namespace torlan;

Q_DECLARE_METATYPE(torlan::health_t)

class tst_findings : public QObject {
    Q_OBJECT

    static findings_t with(const QList<health_t>& _healths) {
        findings_t found;
        for (const health_t health : _healths) {
            found.append({"x", health, "y"});
        }
        return found;
    }

 private Q_SLOTS:
    void verdict_is_the_worst_data() {
        QTest::addColumn<findings_t>("findings");
        QTest::addColumn<health_t>("verdict");
        QTest::addColumn<QString>("text");
        using h = health_t;
        QTest::newRow("well") << with({h::ok, h::ok}) << h::ok << "Everything is well.";
        QTest::newRow("not looked at")
            << with({h::ok, h::unchecked}) << h::ok << "Everything is well, 1 not checked.";
        QTest::newRow("warning") << with({h::warning, h::ok}) << h::warning << "1 warning.";
        QTest::newRow("all") << with({h::warning, h::problem, h::warning, h::unchecked, h::problem})
                             << h::problem << "2 problems, 2 warnings, 1 not checked.";
    }
    void verdict_is_the_worst() {
        QFETCH(findings_t, findings);
        QTEST(verdict_of(findings), "verdict");
        QTEST(verdict_text(findings), "text");
    }
    void finding_is_a_line() {
        QCOMPARE(finding_text({"disk", health_t::warning, "little\x1b[2J"}),
                 "warning     disk      little [2J");
        QCOMPARE(finding_json({"disk", health_t::unchecked, "why"}),
                 (QJsonObject{{"about", "disk"}, {"health", "not checked"}, {"text", "why"}}));
    }
    void verdict_is_json() {
        QCOMPARE(verdict_json(with({health_t::problem, health_t::warning})),
                 (QJsonObject{
                     {"verdict", "problem"}, {"problems", 1}, {"warnings", 1}, {"unchecked", 0}}));
    }
};

QTEST_GUILESS_MAIN(tst_findings)
#include "tst_findings.moc"
