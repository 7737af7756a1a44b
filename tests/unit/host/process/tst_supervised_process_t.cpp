#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include "kit/has_ended.h"
#include "process/supervised_process_t.h"

using namespace process;
using kit::has_ended;
using state_t = supervised_process_t::state_t;
using std::chrono::milliseconds;

namespace {

/// A child that does as a line of shell says.
child_settings_t shell(const QString& _line) {
    return {.program = "/bin/sh",
            .arguments = {"-c", _line},
            .not_ready = "it sleeps",
            .restart_shortest = milliseconds(20),
            .restart_longest = milliseconds(20)};
}

const QString speaking = "echo here; exec sleep 60";

}  // namespace

class tst_supervised_process_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void it_is_ready_when_its_owner_says_so();
    void one_that_ends_before_it_was_ready_has_failed();
    void one_that_is_not_ready_in_time_has_failed();
    void missing_program_has_failed();
    void ready_one_that_dies_is_started_again();
    void one_that_dies_before_it_is_ready_again_is_told_apart();
    void stop_in_a_pause_ends_it();
    void stop_kills_who_does_not_listen();
    void lines_are_told_in_its_owners_words();
    void unfinished_line_counts_at_the_end();
    void endless_line_is_told_in_pieces();
    void it_may_be_started_again();
    void process_id_is_there_when_it_is_launched();
    void it_has_the_descriptor_that_it_inherits();
    void it_may_have_as_many_descriptors_as_it_is_allowed();
    void it_runs_as_another_account();
    void it_ends_when_its_host_is_killed();

 private:
    void kill_child() const { ::kill(pid_t(child->process_id()), SIGKILL); }
    QString last_words() const { return failed->isEmpty() ? "-" : failed->first()[0].toString(); }

    std::unique_ptr<supervised_process_t> child;
    std::unique_ptr<QSignalSpy> launching;
    std::unique_ptr<QSignalSpy> said;
    std::unique_ptr<QSignalSpy> died;
    std::unique_ptr<QSignalSpy> failed;
};

void tst_supervised_process_t::init() {
    child = std::make_unique<supervised_process_t>();
    launching = std::make_unique<QSignalSpy>(child.get(), &supervised_process_t::launching);
    said = std::make_unique<QSignalSpy>(child.get(), &supervised_process_t::said);
    died = std::make_unique<QSignalSpy>(child.get(), &supervised_process_t::died);
    failed = std::make_unique<QSignalSpy>(child.get(), &supervised_process_t::failed);
}

void tst_supervised_process_t::cleanup() {
    child.reset();
}

void tst_supervised_process_t::it_is_ready_when_its_owner_says_so() {
    QCOMPARE(child->state(), state_t::stopped);
    QVERIFY(!child->set_ready());
    child->start(shell(speaking));
    QCOMPARE(child->state(), state_t::starting);
    QCOMPARE(launching->size(), 1);
    QVERIFY(said->wait());
    QVERIFY(child->set_ready());
    QCOMPARE(child->state(), state_t::ready);
    QVERIFY(!child->set_ready());
    child->stop();
    QCOMPARE(child->state(), state_t::stopped);
    QCOMPARE(child->process_id(), qint64(0));
    QVERIFY(died->isEmpty() && failed->isEmpty());
}

void tst_supervised_process_t::one_that_ends_before_it_was_ready_has_failed() {
    child->start(shell("echo first; echo second"));
    QVERIFY(failed->wait());
    QCOMPARE(last_words(), QString("second"));
    QCOMPARE(child->state(), state_t::stopped);
    QVERIFY(died->isEmpty());
    QCOMPARE(launching->size(), 1);
}

void tst_supervised_process_t::one_that_is_not_ready_in_time_has_failed() {
    child_settings_t settings = shell(speaking);
    settings.start_timeout = milliseconds(200);
    child->start(settings);
    QVERIFY(failed->wait());
    QCOMPARE(last_words(), QString("it sleeps"));
    QCOMPARE(child->process_id(), qint64(0));
}

void tst_supervised_process_t::missing_program_has_failed() {
    child->start({.program = "/no/such/program"});
    QTRY_COMPARE(failed->size(), 1);
    QVERIFY(!last_words().isEmpty());
    QCOMPARE(child->state(), state_t::stopped);
}

void tst_supervised_process_t::ready_one_that_dies_is_started_again() {
    child->start(shell(speaking));
    for (int life = 1; life <= 3; ++life) {
        QTRY_COMPARE(said->size(), life);
        QCOMPARE(launching->size(), life);
        QVERIFY(child->set_ready());
        kill_child();
        QVERIFY(died->wait());
        QCOMPARE(died->last()[0].toBool(), true);
        QCOMPARE(child->state(), state_t::pausing);
    }
    QVERIFY(failed->isEmpty());
}

void tst_supervised_process_t::one_that_dies_before_it_is_ready_again_is_told_apart() {
    child_settings_t settings = shell(speaking);
    settings.start_timeout = milliseconds(500);
    child->start(settings);
    QVERIFY(said->wait());
    QVERIFY(child->set_ready());
    kill_child();
    QTRY_COMPARE(died->size(), 2);  // the second was not ready in time
    QCOMPARE(died->last()[0].toBool(), false);
    QTRY_COMPARE(child->state(), state_t::restarting);
    QVERIFY(failed->isEmpty());
}

void tst_supervised_process_t::stop_in_a_pause_ends_it() {
    child_settings_t settings = shell(speaking);
    settings.restart_shortest = settings.restart_longest = milliseconds(100);
    child->start(settings);
    QVERIFY(said->wait());
    QVERIFY(child->set_ready());
    kill_child();
    QVERIFY(died->wait());
    QCOMPARE(child->state(), state_t::pausing);
    child->stop();
    QVERIFY(!launching->wait(300));
    QCOMPARE(child->state(), state_t::stopped);
}

void tst_supervised_process_t::stop_kills_who_does_not_listen() {
    child_settings_t settings = shell("trap '' TERM; echo here; while :; do sleep 60; done");
    settings.stop_timeout = milliseconds(100);
    child->start(settings);
    QVERIFY(said->wait());
    const qint64 process = child->process_id();
    QElapsedTimer clock;
    clock.start();
    child->stop();
    QVERIFY(has_ended(process));
    QVERIFY(clock.elapsed() >= 100 && clock.elapsed() < 5'000);
}

void tst_supervised_process_t::lines_are_told_in_its_owners_words() {
    child_settings_t settings = shell("echo '17: Error: no'; echo '18: why' >&2");
    settings.words = [](const QString& _line) { return _line.section(": ", 1); };
    child->start(settings);
    QVERIFY(failed->wait());
    QCOMPARE(said->size(), 2);
    QCOMPARE(said->first()[0].toString(), QString("Error: no"));
    QCOMPARE(last_words(), QString("why"));
}

void tst_supervised_process_t::unfinished_line_counts_at_the_end() {
    child->start(shell("printf 'half a line'"));
    QVERIFY(failed->wait());
    QCOMPARE(last_words(), QString("half a line"));
}

void tst_supervised_process_t::endless_line_is_told_in_pieces() {
    child->start(shell("head -c 1000000 /dev/zero | tr '\\0' x; exec sleep 60"));
    QTRY_VERIFY(said->size() >= 10);
    QVERIFY(said->first()[0].toString().size() <= 64 * 1024);
}

void tst_supervised_process_t::it_may_be_started_again() {
    child->start(shell("exit 1"));
    QVERIFY(failed->wait());
    child->start(shell(speaking));
    QVERIFY(said->wait());
    const qint64 former = child->process_id();
    child->start(shell(speaking));
    QVERIFY(has_ended(former));
    QVERIFY(said->wait());
    QCOMPARE(failed->size(), 1);
}

void tst_supervised_process_t::process_id_is_there_when_it_is_launched() {
    qint64 process = 0;
    connect(child.get(), &supervised_process_t::launched, this,
            [this, &process]() { process = child->process_id(); });
    child->start(shell(speaking));
    QVERIFY(process > 0);
    QCOMPARE(process, child->process_id());
}

void tst_supervised_process_t::it_has_the_descriptor_that_it_inherits() {
    const int descriptor = ::open("/etc/passwd", O_RDONLY | O_CLOEXEC);
    const QString line = QString("readlink /proc/self/fd/%1 || echo none").arg(descriptor);
    child_settings_t settings = shell(line);
    child->start(settings);
    QVERIFY(failed->wait());
    QCOMPARE(last_words(), QString("none"));
    failed->clear();
    settings.inherited = {descriptor};
    child->start(settings);
    QVERIFY(failed->wait());
    QCOMPARE(last_words(), QString("/etc/passwd"));
    ::close(descriptor);
}

void tst_supervised_process_t::it_may_have_as_many_descriptors_as_it_is_allowed() {
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlim_t former = std::exchange(limit.rlim_cur, rlim_t(200));
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    child_settings_t settings = shell("ulimit -n");
    for (const int wanted : {0, 100, 250, 2'000'000'000}) {
        settings.descriptors = wanted;
        failed->clear();
        child->start(settings);
        QVERIFY(failed->wait());
        QCOMPARE(last_words().toULongLong(),
                 std::clamp<rlim_t>(rlim_t(wanted), 200, limit.rlim_max));
    }
    limit.rlim_cur = former;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

void tst_supervised_process_t::it_runs_as_another_account() {
    if (::geteuid() != 0) {
        QSKIP("only root hands a child over");
    }
    child_settings_t settings = shell("id -u; id -G");
    settings.account = system_account_t{12345, 23456};
    child->start(settings);
    QVERIFY(failed->wait());
    QCOMPARE(said->first()[0].toString(), QString("12345"));
    QCOMPARE(last_words(), QString("23456"));
}

void tst_supervised_process_t::it_ends_when_its_host_is_killed() {
    QProcess holder;
    holder.start(qEnvironmentVariable("TORLAN_CHILD_HOLDER"), QStringList());
    QTRY_VERIFY_WITH_TIMEOUT(holder.canReadLine(), 10'000);
    const qint64 process = holder.readLine().trimmed().toLongLong();
    QVERIFY(process > 0 && !has_ended(process));
    holder.kill();
    QVERIFY(holder.waitForFinished());
    QTRY_VERIFY(has_ended(process));
}

QTEST_GUILESS_MAIN(tst_supervised_process_t)
#include "tst_supervised_process_t.moc"
