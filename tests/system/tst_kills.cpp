#include <signal.h>

#include <QtTest>

#include "kit/has_ended.h"
#include "kit/wait_until.h"
#include "system/support/asked_changes_t.h"
#include "system/support/service.h"

using namespace kit;
using namespace support;

/// Every process of an installation is killed while somebody changes it: nothing that was
/// acknowledged is lost, nothing is left behind, everybody is served again. Short here; as a proof
/// 200 times each.
class tst_kills : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_is_lost_and_all_are_served_again_data();
    void nothing_is_lost_and_all_are_served_again();

 private:
    run_process_t run;
    asked_changes_t changes{&run};
};

namespace {

const bool is_proof = qEnvironmentVariableIsSet("TORLAN_PROOF");
const int kills = is_proof ? 200 : 4;  // each kind of change once

const auto supervisor = QStringLiteral("torlan-run");

}  // namespace

void tst_kills::nothing_is_lost_and_all_are_served_again_data() {
    QTest::addColumn<QString>("victim");
    for (const auto& victim : {QStringLiteral("mosquitto"), QStringLiteral("torlan-server"),
                               QStringLiteral("torlan-config"), supervisor}) {
        QTest::newRow(qPrintable(victim)) << victim;
    }
}

void tst_kills::nothing_is_lost_and_all_are_served_again() {
    QFETCH(QString, victim);
    QVERIFY2(run.process().state() == QProcess::Running || run.start(SAMPLE, {"--no-web"}),
             run.shown());
    changes.begin();
    QVERIFY(is_config_served(run) && is_user_served(run));
    QList<qint64> recoveries;
    for (int turn = 0; turn < kills; ++turn) {
        const qint64 killed =
            victim == supervisor ? run.process().processId() : run.descendant(victim);
        QVERIFY2(killed > 1, qPrintable(victim));
        const QList<qint64> family = run.descendants();
        QElapsedTimer clock;
        changes.ask(turn, [&]() {
            ::kill(pid_t(killed), SIGKILL);
            clock.start();
        });
        QVERIFY(wait_until([&]() { return has_ended(killed); }));
        if (victim == supervisor) {
            QVERIFY(run.process().state() == QProcess::NotRunning ||
                    run.process().waitForFinished());
            for (const qint64 process : family) {
                QVERIFY2(wait_until([&]() { return has_ended(process); }),
                         qPrintable(QString::number(process)));
            }
            QVERIFY2(run.start(SAMPLE, {"--no-web"}), run.shown());
        } else {
            QVERIFY(wait_until([&]() {
                const qint64 now = run.descendant(victim);
                return now > 1 && now != killed;
            }));
        }
        QVERIFY2(is_config_served(run) && is_user_served(run), qPrintable(QString::number(turn)));
        recoveries += clock.elapsed();
        QVERIFY(changes.is_whole());
        const QStringList lost = changes.lost();
        QVERIFY2(lost.isEmpty(), qPrintable(lost.join("; ")));
        if (turn % 20 == 0 || turn + 1 == kills) {
            for (const auto user : {"alice", "bob", "carol", "dave"}) {
                const QString wrong = wrong_for(run, user);
                QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
            }
        }
    }
    std::sort(recoveries.begin(), recoveries.end());
    qInfo(
        "%s killed %d times: %d changes acknowledged so far, 0 lost; served again after %lld ms, "
        "%lld at worst",
        qPrintable(victim), kills, changes.acknowledged(), recoveries[recoveries.size() / 2],
        recoveries.last());
}

QTEST_GUILESS_MAIN(tst_kills)
#include "tst_kills.moc"
