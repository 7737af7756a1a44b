#include <signal.h>

#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/ets_house.h"
#include "kit/free_port.h"
#include "kit/has_ended.h"
#include "system/support/api_user.h"
#include "system/support/children_of.h"

using namespace kit;
using namespace support;

/// torlan-run --knx demo: a bus without a wire, and the devices of the sample home on it.
class tst_knx_demo : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void lamp_written_by_a_user_comes_back_as_a_status();
    void ets_project_becomes_a_house_with_two_commands();
    void other_program_on_the_bus_is_heard_and_no_other_user();
    void what_dies_is_started_again_data();
    void what_dies_is_started_again();
    void whatever_ends_it_nothing_is_left_and_the_next_start_works_data();
    void whatever_ends_it_nothing_is_left_and_the_next_start_works();
    void bus_of_a_killed_start_is_waited_for();
    void bus_that_stands_still_delays_no_end();
    void home_without_a_bus_is_told();
    void missing_daemon_is_one_sentence_and_leaves_nothing();

 private:
    QString data() const { return folder->filePath(QStringLiteral("the \"home\" & \\1")); }
    QString url() const {
        return QStringLiteral("local:") + data() + QStringLiteral("/knxd.socket");
    }
    void begin(const QString& _sample = QStringLiteral(KNX_SAMPLE), const QStringList& _more = {});
    bool is_ready(const QString& _password = QStringLiteral("sample-alice"));
    /// Their command lines may be longer than what the kernel calls them.
    qint64 child(const QString& _name) const {
        return children_of(process->processId()).value(_name.left(15));
    }
    QList<qint64> children() const { return children_of(process->processId()).values(); }
    bool all_have_ended(const QList<qint64>& _processes) const {
        return std::all_of(_processes.begin(), _processes.end(), &kit::has_ended);
    }
    /// A write of alice's, until the lamp says that it is so.
    bool lamp_becomes(const QString& _value);
    bool is_pushed(const QString& _element, const QString& _function, const QString& _value);

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<QProcess> process;
    std::unique_ptr<mqtt_client_t> alice;
    quint16 port = 0;
};

namespace {

const QString lamp = QStringLiteral("e-kitchen-ceiling");

}  // namespace

void tst_knx_demo::init() {
    folder = std::make_unique<QTemporaryDir>();
    port = free_port();
}

void tst_knx_demo::cleanup() {
    alice.reset();
    if (process && process->state() != QProcess::NotRunning) {
        process->terminate();
        process->waitForFinished(process_timeout_ms);
    }
    process.reset();
}

void tst_knx_demo::begin(const QString& _sample, const QStringList& _more) {
    process = std::make_unique<QProcess>();
    kit::end_with_test(process.get());
    process->start(TORLAN_RUN,
                   QStringList{"--data", data(), "--config-port", QString::number(free_port()),
                               "--port", QString::number(port), "--sample", _sample,
                               "--log-level-std", "2", "--knx", "demo", "--no-web"} +
                       _more);
}

bool tst_knx_demo::is_ready(const QString& _password) {
    while (process->state() != QProcess::NotRunning) {
        while (!process->canReadLine() && process->waitForReadyRead(60'000)) {
        }
        if (process->readLine().startsWith("torlan: ready")) {
            alice = std::make_unique<mqtt_client_t>();
            return alice->sign_in(port, "alice", _password) == 0 &&
                   alice->subscribe("local/api/v1/alice/#");
        }
    }
    return false;
}

bool tst_knx_demo::is_pushed(const QString& _element, const QString& _function,
                             const QString& _value) {
    return alice->wait_for([&](const auto& _message) {
        return _message.topic == state_topic("alice", _element) &&
               value_in(_message.json(), _function) == _value;
    }) != nullptr;
}

bool tst_knx_demo::lamp_becomes(const QString& _value) {
    // The devices are still on their way in: what is written before is nobody's.
    return QTest::qWaitFor(
        [&]() {
            alice->request(request_topic("alice", "set", lamp), write_payload("execute", _value));
            return value_in(alice->request(request_topic("alice", "get", lamp)), "execute") ==
                   _value;
        },
        process_timeout_ms);
}

void tst_knx_demo::lamp_written_by_a_user_comes_back_as_a_status() {
    begin();
    QVERIFY(is_ready());
    QVERIFY(is_pushed(lamp, "execute", "1"));  // as the sample says
    QVERIFY(lamp_becomes("0"));
    QVERIFY(is_pushed(lamp, "execute", "0"));
    // A dimmer goes there step by step: from 65.
    alice->request(request_topic("alice", "set", "e-kitchen-table"), write_payload("level", "30"));
    for (const char* level : {"55", "45", "35", "30"}) {
        QVERIFY2(is_pushed("e-kitchen-table", "level", level), level);
    }
}

// What docs/knx.md shows, with what is typed there.
void tst_knx_demo::ets_project_becomes_a_house_with_two_commands() {
    const auto write = [this](const char* _name, const QByteArray& _bytes) {
        QFile file(folder->filePath(_name));
        [&]() { QVERIFY(file.open(QIODevice::WriteOnly)); }();
        file.write(_bytes);
        return file.fileName();
    };
    const QString house = folder->filePath("mill.json");
    QProcess convert;
    convert.setStandardInputFile(write("password", "mill-alice\n"));
    convert.start(TORLAN_ETS,
                  {"--user", "alice", "--output", house, write("mill.knxproj", ets_house())});
    QVERIFY(convert.waitForFinished(process_timeout_ms));
    QCOMPARE(convert.exitCode(), 0);

    begin({}, {"--import", house});
    QVERIFY(is_ready("mill-alice"));
    // As soon as the devices are there, they have told what they are.
    QVERIFY(QTest::qWaitFor(
        [this]() {
            alice->request(request_topic("alice", "set", "e-1-1-1"), write_payload("execute", "1"));
            return value_in(alice->request(request_topic("alice", "get", "e-1-1-1")), "execute") ==
                   "1";
        },
        process_timeout_ms));
    QVERIFY(is_pushed("e-1-1-1", "execute", "1"));
    // Which nobody has written, and nobody was there to answer for at the start.
    QVERIFY(is_pushed("e-5-0-2", "open", "0"));
    alice->request(request_topic("alice", "set", "e-1-1-3"), write_payload("level", "20"));
    QVERIFY(is_pushed("e-1-1-3", "level", "10") && is_pushed("e-1-1-3", "level", "20"));
    alice->request(request_topic("alice", "set", "e-2-2-1"), write_payload("move", "1"));
    QVERIFY(is_pushed("e-2-2-1", "position", "10"));
    alice->request(request_topic("alice", "set", "e-2-2-1"), write_payload("stop", "1"));
}

void tst_knx_demo::other_program_on_the_bus_is_heard_and_no_other_user() {
    begin();
    QVERIFY(is_ready());
    QVERIFY(lamp_becomes("0"));
    // As the wall switch does: the actuator hears it, and says so.
    QCOMPARE(QProcess::execute("knxtool", {"groupswrite", url(), "1/1/1", "1"}), 0);
    QVERIFY(is_pushed(lamp, "execute", "1"));
    const QFileInfo socket(data() + "/knxd.socket");
    QCOMPARE(socket.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                     QFile::ReadOther | QFile::WriteOther | QFile::ExeOther),
             QFile::Permissions());
}

void tst_knx_demo::what_dies_is_started_again_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("bus") << "knxd" << QByteArray("the KNX daemon had ended and was started again.");
    QTest::newRow("devices") << "torlan-knx-house"
                             << QByteArray("the devices had ended and were started again.");
}

void tst_knx_demo::what_dies_is_started_again() {
    QFETCH(QString, program);
    QFETCH(QByteArray, told);
    begin();
    QVERIFY(is_ready());
    QVERIFY(lamp_becomes("0"));
    process->setReadChannel(QProcess::StandardError);
    QByteArray heard;
    for (int life = 1; life <= 2; ++life) {
        const qint64 former = child(program);
        QVERIFY(former > 0);
        ::kill(pid_t(former), SIGKILL);
        while (heard.count(told) < life &&
               (process->canReadLine() || process->waitForReadyRead(process_timeout_ms))) {
            heard += process->readLine();
        }
        QVERIFY2(heard.count(told) == life, heard);
        QVERIFY(child(program) != former);
        QVERIFY(lamp_becomes(life == 1 ? "1" : "0"));
    }
}

void tst_knx_demo::whatever_ends_it_nothing_is_left_and_the_next_start_works_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("killed") << SIGKILL;
}

void tst_knx_demo::whatever_ends_it_nothing_is_left_and_the_next_start_works() {
    QFETCH(int, signal);
    begin();
    QVERIFY(is_ready());
    QVERIFY(lamp_becomes("0"));
    const QList<qint64> programs = children();
    QCOMPARE(programs.size(), qsizetype(4));
    ::kill(pid_t(process->processId()), signal);
    QVERIFY(process->waitForFinished(process_timeout_ms));
    if (signal != SIGKILL) {
        QCOMPARE(process->exitCode(), 0);
        QVERIFY(all_have_ended(programs));
        QVERIFY(!QFile::exists(data() + "/knxd.socket"));
    }
    begin();  // at once: what the former one has left is still ending
    QVERIFY(is_ready());
    QVERIFY(all_have_ended(programs));
    QVERIFY(lamp_becomes("1"));
}

void tst_knx_demo::bus_of_a_killed_start_is_waited_for() {
    begin();
    QVERIFY(is_ready());
    const auto bus = pid_t(child("knxd"));
    ::kill(bus, SIGSTOP);  // it hears of its end later
    process->kill();
    QVERIFY(process->waitForFinished(process_timeout_ms));
    begin();
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QCOMPARE(process->exitCode(), 1);
    const QByteArray error = process->readAllStandardError();
    QVERIFY2(error.contains("The KNX daemon of a former start in "), error);
    ::kill(bus, SIGCONT);
    begin();
    QVERIFY(is_ready());
    QVERIFY(lamp_becomes("0"));
}

void tst_knx_demo::bus_that_stands_still_delays_no_end() {
    begin();
    QVERIFY(is_ready());
    QVERIFY(lamp_becomes("0"));
    const QList<qint64> programs = children();
    ::kill(pid_t(child("knxd")), SIGSTOP);
    QElapsedTimer clock;
    clock.start();
    process->terminate();
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QVERIFY2(clock.elapsed() < 10'000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(process->exitCode(), 0);
    QVERIFY(all_have_ended(programs));
}

void tst_knx_demo::home_without_a_bus_is_told() {
    begin(QStringLiteral(SAMPLE));
    QVERIFY(is_ready());
    process->setReadChannel(QProcess::StandardError);
    QByteArray heard;
    while (!heard.contains("there are no devices to play.") &&
           (process->canReadLine() || process->waitForReadyRead(process_timeout_ms))) {
        heard += process->readLine();
    }
    QVERIFY2(heard.contains("torlan-knx-house: Nothing of the installation in "), heard);
    QTRY_COMPARE_WITH_TIMEOUT(child("torlan-knx-house"), qint64(0), process_timeout_ms);
    QVERIFY(lamp_becomes("0"));  // simulated
}

void tst_knx_demo::missing_daemon_is_one_sentence_and_leaves_nothing() {
    process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PATH", "/nonexistent");
    process->setProcessEnvironment(environment);
    process->start(TORLAN_RUN, {"--data", data(), "--knx", "demo", "--no-web"});
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QCOMPARE(process->exitCode(), 1);
    const QByteArray error = process->readAllStandardError();
    QVERIFY2(error.startsWith("torlan: The KNX daemon knxd could not be started: "), error);
    QCOMPARE(error.count('\n'), 1);
    QVERIFY(QDir(folder->path()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_knx_demo)
#include "tst_knx_demo.moc"
