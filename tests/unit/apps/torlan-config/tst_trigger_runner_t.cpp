#include "trigger_runner_t.h"

#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace torlan;

class tst_trigger_runner_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void program_runs_once_a_call();
    void calls_during_a_run_become_one_more_run();
    void late_program_is_killed();
    void failure_is_told_data();
    void failure_is_told();
    void program_that_cannot_start_may_be_asked_again();
    void without_a_program_nothing_runs();
    void end_of_the_runner_ends_the_program();

 private:
    QString script(const QByteArray& _text) {
        QFile file(folder.filePath("trigger"));
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write("#!/bin/sh\n" + _text + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file.fileName();
    }
    QByteArray written(const QString& _name) {
        QFile file(folder.filePath(_name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QByteArray quoted(const QString& _name) { return '"' + folder.filePath(_name).toUtf8() + '"'; }

    QTemporaryDir folder;
};

void tst_trigger_runner_t::program_runs_once_a_call() {
    trigger_runner_t runner(script("echo \"run $#\" >> " + quoted("runs")));
    QSignalSpy spy(&runner, &trigger_runner_t::ran);
    for (int run = 1; run <= 2; ++run) {
        runner.run();
        QVERIFY(spy.wait());
        QVERIFY(spy.takeFirst().first().toBool());
        QCOMPARE(written("runs"), QByteArray("run 0\n").repeated(run));
    }
}

void tst_trigger_runner_t::calls_during_a_run_become_one_more_run() {
    const QByteArray fifo = quoted("go");
    trigger_runner_t runner(script("[ -p " + fifo + " ] || mkfifo " + fifo + "; echo x >> " +
                                   quoted("begun") + "; read line < " + fifo));
    QSignalSpy spy(&runner, &trigger_runner_t::ran);
    runner.run();
    QTRY_COMPARE(written("begun"), "x\n");
    runner.run();
    runner.run();
    runner.run();
    QFile go(folder.filePath("go"));
    QVERIFY(go.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    go.write("1\n");
    go.close();
    QTRY_COMPARE(written("begun"), "x\nx\n");
    QCOMPARE(spy.size(), 1);
    QVERIFY(go.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    go.write("2\n");
    go.close();
    QTRY_COMPARE(spy.size(), 2);
    QVERIFY(!spy.wait(50));
    QCOMPARE(written("begun"), "x\nx\n");
}

void tst_trigger_runner_t::late_program_is_killed() {
    QCOMPARE(trigger_runner_t::default_limit_ms, 30000);
    trigger_runner_t runner(script("exec sleep 60"));
    runner.set_limit(50);
    QSignalSpy spy(&runner, &trigger_runner_t::ran);
    runner.run();
    QVERIFY(spy.wait());
    QVERIFY(!spy.first().first().toBool());
}

void tst_trigger_runner_t::failure_is_told_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("exit status") << QByteArray("exit 3");
    QTest::newRow("killed") << QByteArray("kill -9 $$");
}

void tst_trigger_runner_t::failure_is_told() {
    QFETCH(QByteArray, text);
    trigger_runner_t runner(script(text));
    QSignalSpy spy(&runner, &trigger_runner_t::ran);
    runner.run();
    QVERIFY(spy.wait());
    QCOMPARE(spy.first().first().toBool(), false);
}

void tst_trigger_runner_t::program_that_cannot_start_may_be_asked_again() {
    trigger_runner_t runner(folder.filePath("missing"));
    QSignalSpy spy(&runner, &trigger_runner_t::ran);
    for (int run = 1; run <= 2; ++run) {
        runner.run();
        QTRY_COMPARE(spy.size(), run);
        QVERIFY(!spy.last().first().toBool());
    }
}

void tst_trigger_runner_t::without_a_program_nothing_runs() {
    trigger_runner_t runner({});
    QSignalSpy spy(&runner, &trigger_runner_t::ran);
    runner.run();
    QVERIFY(!spy.wait(50));
}

void tst_trigger_runner_t::end_of_the_runner_ends_the_program() {
    QTest::failOnWarning(QRegularExpression("still running"));
    auto runner = std::make_unique<trigger_runner_t>(
        script("echo $$ > " + quoted("pid") + "; exec sleep 60"));
    runner->run();
    QTRY_VERIFY(written("pid").endsWith('\n'));
    const QString process = "/proc/" + QString::fromLatin1(written("pid").trimmed());
    QVERIFY(QFile::exists(process));
    runner.reset();
    QVERIFY(!QFile::exists(process));
}

QTEST_GUILESS_MAIN(tst_trigger_runner_t)
#include "tst_trigger_runner_t.moc"
