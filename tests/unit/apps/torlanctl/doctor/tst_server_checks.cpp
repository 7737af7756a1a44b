#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "doctor/checks.h"
#include "doctor/findings.h"
#include "kit/end_with_test.h"
#include "kit/free_port.h"
#include "program/version.h"

using namespace torlan;

/// What a broker lets through that it must not.
class tst_server_checks : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() {
        QFile file(folder.filePath("conf"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("listener " + QByteArray::number(port) +
                   " 127.0.0.1\nallow_anonymous true\nuser root\n");
        file.close();
        kit::end_with_test(&broker);
        broker.start("mosquitto", {"-c", file.fileName()});
        QVERIFY(broker.waitForStarted());
    }
    void cleanupTestCase() {
        broker.kill();
        broker.waitForFinished();
    }

    void broker_that_lets_everybody_in_is_a_problem() {
        const findings_t found = sign_in_findings("127.0.0.1", port);
        QCOMPARE(found.size(), 2);
        for (const finding_t& finding : found) {
            QVERIFY2(finding.health == health_t::problem, qPrintable(finding.text));
        }
    }

    void broker_that_lets_users_do_everything_is_a_problem() {
        const findings_t found = rights_findings(
            {.host = "127.0.0.1", .port = port, .user = "alice", .password = "any"});
        QCOMPARE(found.size(), 4);
        for (const finding_t& finding : found) {
            QVERIFY2(finding.health == health_t::problem, qPrintable(finding.text));
        }
    }

    void port_that_nobody_has_is_a_problem() {
        const QJsonObject status{{"server", QJsonObject{{"ready", true}, {"version", version()}}},
                                 {"broker", QJsonObject{{"running", true},
                                                        {"users_confirmed", true},
                                                        {"process", broker.processId()}}},
                                 {"mqtt", QJsonObject{{"port", port}}}};
        QVERIFY2(verdict_of(server_findings(status)) == health_t::ok,
                 qPrintable(verdict_text(server_findings(status))));
        QJsonObject other = status;
        other.insert("mqtt", QJsonObject{{"port", kit::free_port()}});
        QCOMPARE(verdict_of(server_findings(other)), health_t::problem);
        other = status;
        other.insert("broker", QJsonObject{{"running", true},
                                           {"users_confirmed", true},
                                           {"process", QCoreApplication::applicationPid()}});
        QCOMPARE(verdict_of(server_findings(other)), health_t::problem);
    }

    void broker_that_does_not_answer_is_told_apart() {
        const findings_t found = sign_in_findings("127.0.0.1", kit::free_port());
        QCOMPARE(found.size(), 1);
        QCOMPARE(found[0].health, health_t::unchecked);
    }

 private:
    const quint16 port = kit::free_port();
    const QTemporaryDir folder;
    QProcess broker;
};

QTEST_GUILESS_MAIN(tst_server_checks)
#include "tst_server_checks.moc"
