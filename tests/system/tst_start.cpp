#include <QTcpServer>
#include <QtTest>

#include "http/http_t.h"
#include "kit/end_with_test.h"
#include "kit/free_port.h"
#include "kit/has_ended.h"
#include "system/support/api_user.h"
#include "system/support/children_of.h"

using namespace kit;
using namespace support;

/// torlan-run, the part of ./run behind the build: both programs, the first settings, the end.
class tst_start : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void a_first_start_writes_settings_and_a_later_one_keeps_them();
    void settings_of_any_folder_name_are_json();
    void both_programs_end_with_it_data();
    void both_programs_end_with_it();
    void whatever_ends_it_nothing_is_left_and_the_next_start_works_data();
    void whatever_ends_it_nothing_is_left_and_the_next_start_works();
    void a_program_that_dies_is_started_again_data();
    void a_program_that_dies_is_started_again();
    void a_stop_right_after_ready_keeps_the_home();
    void a_reader_that_goes_away_changes_nothing();
    void of_two_first_starts_one_runs();
    void a_failed_first_start_is_one_sentence_and_leaves_nothing_data();
    void a_failed_first_start_is_one_sentence_and_leaves_nothing();
    void a_failed_later_start_leaves_what_was_there();
    void a_foreign_server_on_the_port_is_not_taken_for_ours();

 private:
    QString data() const { return folder->filePath(QStringLiteral("the \"home\" & \\1")); }
    QStringList arguments(const QStringList& _more = {}) const {
        return QStringList{"--data",          data(),
                           "--config-port",   QString::number(config_port),
                           "--port",          QString::number(port),
                           "--sample",        SAMPLE,
                           "--log-level-std", "2",
                           "--no-web"} +
               _more;
    }
    void begin(const QStringList& _arguments) {
        process = std::make_unique<QProcess>();
        kit::end_with_test(process.get());
        process->start(TORLAN_RUN, _arguments);
    }
    bool is_ready() {
        while (process->state() != QProcess::NotRunning) {
            while (!process->canReadLine() && process->waitForReadyRead(60000)) {
            }
            if (process->readLine().startsWith("torlan: ready")) {
                return true;
            }
        }
        return false;
    }
    int end(void (QProcess::*_how)()) {
        (process.get()->*_how)();
        return process->waitForFinished(process_timeout_ms) &&
                       process->exitStatus() == QProcess::NormalExit
                   ? process->exitCode()
                   : -1;
    }
    QMap<QString, qint64> children() const { return children_of(process->processId()); }
    /// Const, so that chained reads do not make references into a temporary.
    const QJsonObject settings() const {
        QFile file(data() + "/settings.json");
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }
    static bool is_running(qint64 _process) { return !kit::has_ended(_process); }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<QProcess> process;
    quint16 port = 0;
    quint16 config_port = 0;
};

void tst_start::init() {
    folder = std::make_unique<QTemporaryDir>();
    port = free_port();
    config_port = free_port();
}

void tst_start::cleanup() {
    if (process && process->state() != QProcess::NotRunning) {
        end(&QProcess::terminate);
    }
    process.reset();
}

void tst_start::a_first_start_writes_settings_and_a_later_one_keeps_them() {
    begin(arguments());
    QVERIFY(is_ready());
    const QJsonObject first = settings();
    const QString id = first["installation"]["installation_id"].toString();
    QVERIFY(!id.isEmpty());
    QFile clients(data() + "/client/config/comunication.json");
    QVERIFY(clients.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(clients.readAll())["global"]["installation_id"].toString(),
             id);
    QVERIFY(QFile::exists(data() + "/logs/server-torlan.log"));
    const QString url = QStringLiteral("http://127.0.0.1:%1/").arg(config_port);
    QCOMPARE(http_t(url, false).put("static/device/product_name", "Box").getError(), 0);
    QCOMPARE(end(&QProcess::terminate), 0);

    begin(arguments());
    QVERIFY(is_ready());
    QCOMPARE(settings()["installation"]["installation_id"].toString(), id);
    QCOMPARE(settings()["static"]["device"]["product_name"].toString(), QString("Box"));
}

void tst_start::settings_of_any_folder_name_are_json() {
    begin(arguments());
    QVERIFY(is_ready());
    const QJsonValue paths = settings()["static"]["torlan"]["paths"];
    QCOMPARE(paths["client_communication"].toString(), data() + "/client");
    QCOMPARE(paths["logs"].toString(), data() + "/logs");
    QCOMPARE(paths["plugins"].toString(), QString(BUILD "/lib/drivers"));
}

void tst_start::both_programs_end_with_it_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("closed terminal") << SIGHUP;
    QTest::newRow("Ctrl-backslash") << SIGQUIT;
}

void tst_start::both_programs_end_with_it() {
    QFETCH(int, signal);
    begin(arguments());
    QVERIFY(is_ready());
    const QMap<QString, qint64> programs = children();
    QCOMPARE(programs.keys(), (QStringList{"torlan-config", "torlan-server"}));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(::kill(pid_t(process->processId()), signal), 0);
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 0);
    for (const qint64 program : programs) {
        QVERIFY(!is_running(program));
    }
}

void tst_start::whatever_ends_it_nothing_is_left_and_the_next_start_works_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("killed") << SIGKILL;
    QTest::newRow("aborted") << SIGABRT;
    QTest::newRow("SIGUSR1") << SIGUSR1;
    QTest::newRow("SIGALRM") << SIGALRM;
}

void tst_start::whatever_ends_it_nothing_is_left_and_the_next_start_works() {
    QFETCH(int, signal);
    begin(arguments());
    QVERIFY(is_ready());
    QMap<QString, qint64> programs = children();
    programs["broker"] = children_of(programs["torlan-server"]).value("mosquitto");
    QCOMPARE(programs.size(), 3);
    QVERIFY(programs["broker"] > 0);
    QCOMPARE(::kill(pid_t(process->processId()), signal), 0);
    QVERIFY(process->waitForFinished(process_timeout_ms));
    begin(arguments());  // at once: what the former one has left is still ending
    QVERIFY(is_ready());
    for (const qint64 program : std::as_const(programs)) {
        QVERIFY(!is_running(program));
    }
    QCOMPARE(end(&QProcess::terminate), 0);
}

void tst_start::a_program_that_dies_is_started_again_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QByteArray>("called");
    QTest::newRow("server") << "torlan-server" << QByteArray("the server");
    QTest::newRow("settings") << "torlan-config" << QByteArray("the configuration server");
}

void tst_start::a_program_that_dies_is_started_again() {
    QFETCH(QString, program);
    QFETCH(QByteArray, called);
    begin(arguments());
    QVERIFY(is_ready());
    process->setReadChannel(QProcess::StandardError);
    for (int life = 0; life < 3; ++life) {
        const qint64 former = children()[program];
        ::kill(pid_t(former), SIGKILL);
        QByteArray told;
        while (!told.contains(called + " had ended and was started again.") &&
               (process->canReadLine() || process->waitForReadyRead(process_timeout_ms))) {
            told += process->readLine();
        }
        QVERIFY2(told.contains(called + " was ended by a signal"), told);
        QVERIFY2(told.contains("was started again"), told);
        QVERIFY(children()[program] != former);
    }
    const http_t http(QStringLiteral("http://127.0.0.1:%1/").arg(config_port), false);
    QCOMPARE(http.get({}).getData().toObject(), settings());
    kit::mqtt_client_t alice;
    QCOMPARE(alice.sign_in(port, "alice", "sample-alice"), 0);
    QCOMPARE(end(&QProcess::terminate), 0);
}

void tst_start::a_stop_right_after_ready_keeps_the_home() {
    begin(arguments());
    QVERIFY(is_ready());
    QCOMPARE(::kill(pid_t(process->processId()), SIGINT), 0);
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QCOMPARE(process->exitCode(), 0);
    QVERIFY(QFile::exists(data() + "/installation.db"));
    QVERIFY(QFile::exists(data() + "/settings.json"));
}

// As "./run 2>&1 | head -3".
void tst_start::a_reader_that_goes_away_changes_nothing() {
    process = std::make_unique<QProcess>();
    kit::end_with_test(process.get());
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(TORLAN_RUN, arguments());
    QVERIFY(is_ready());
    const QMap<QString, qint64> programs = children();
    process->closeReadChannel(QProcess::StandardOutput);
    process->closeReadChannel(QProcess::StandardError);
    for (int life = 0; life < 2; ++life) {  // something to say each time
        const qint64 former = children()["torlan-config"];
        ::kill(pid_t(former), SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(children().value("torlan-config", former) != former,
                                 process_timeout_ms);
    }
    QVERIFY(is_running(programs["torlan-server"]));
    QCOMPARE(end(&QProcess::terminate), 0);
    QVERIFY(!is_running(programs["torlan-server"]));
}

void tst_start::of_two_first_starts_one_runs() {
    QProcess other;
    other.start(TORLAN_RUN, arguments());
    begin(arguments());
    // One of them is refused by the other, which is not hurt by it.
    QTRY_VERIFY_WITH_TIMEOUT(
        process->state() == QProcess::NotRunning || other.state() == QProcess::NotRunning,
        process_timeout_ms);
    const bool first = other.state() == QProcess::NotRunning;
    QProcess& refused = first ? other : *process;
    QCOMPARE(refused.exitCode(), 1);
    QVERIFY(refused.readAllStandardError().contains("is in use by process"));
    QProcess& runs = first ? *process : other;
    while (!runs.readLine().startsWith("torlan: ready")) {
        QVERIFY(runs.canReadLine() || runs.waitForReadyRead(process_timeout_ms));
    }
    QVERIFY(QFile::exists(data() + "/installation.db"));
    runs.terminate();
    QVERIFY(runs.waitForFinished(process_timeout_ms));
    QCOMPARE(runs.exitCode(), 0);
}

void tst_start::a_failed_first_start_is_one_sentence_and_leaves_nothing_data() {
    QTest::addColumn<QString>("missing_or_used");
    QTest::newRow("broken import file") << "import";
    QTest::newRow("MQTT port in use") << "port";
    QTest::newRow("configuration port in use") << "config-port";
    QTest::newRow("configuration port is no number") << "config-port x";
    QTest::newRow("folder cannot be made") << "folder";
}

void tst_start::a_failed_first_start_is_one_sentence_and_leaves_nothing() {
    QFETCH(QString, missing_or_used);
    QTcpServer other;
    QStringList given = arguments();
    QString named;
    if (missing_or_used == "import") {
        named = "/nonexistent/file.json";
        given += {"--import", named};
    } else if (missing_or_used == "config-port x") {
        given[2] = named = "x";
    } else if (missing_or_used == "folder") {
        given[1] = named = "/proc/nothing";
    } else {
        const quint16 used = missing_or_used == "port" ? port : config_port;
        QVERIFY(other.listen(QHostAddress::LocalHost, used));
        named = QString::number(used);
    }
    begin(given);
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QVERIFY(process->exitCode() != 0);
    const QByteArray error = process->readAllStandardError();
    QVERIFY2(error.count('\n') == 1 && error.contains(named.toUtf8()), error);
    QVERIFY(QDir(folder->path()).isEmpty());
}

void tst_start::a_failed_later_start_leaves_what_was_there() {
    begin(arguments());
    QVERIFY(is_ready());
    QCOMPARE(end(&QProcess::terminate), 0);
    const QJsonObject before = settings();
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost, port));
    begin(arguments());
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QCOMPARE(process->exitCode(), 1);
    QCOMPARE(settings(), before);
    QVERIFY(QFile::exists(data() + "/installation.db"));
}

// Another installation's server there would lend its id and its folders.
void tst_start::a_foreign_server_on_the_port_is_not_taken_for_ours() {
    QTemporaryDir elsewhere;
    const config_process_t other(elsewhere.filePath("settings.json"),
                                 {"--port", QString::number(config_port)});
    QVERIFY(!other.ready_line.isEmpty());
    begin(arguments());
    QVERIFY(process->waitForFinished(process_timeout_ms));
    QCOMPARE(process->exitCode(), 1);
    QCOMPARE(http_t(other.url(), false).get({}).getData().toObject(), QJsonObject());
}

QTEST_GUILESS_MAIN(tst_start)
#include "tst_start.moc"
