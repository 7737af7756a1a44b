#include <QTcpServer>
#include <QtTest>

#include "http/http_t.h"
#include "kit/free_port.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// packaging/start, the part of ./run behind the build: both programs, the first settings, the end.
class tst_start : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void a_first_start_writes_settings_and_a_later_one_keeps_them();
    void settings_of_any_folder_name_are_json();
    void both_programs_end_with_it_data();
    void both_programs_end_with_it();
    void a_configuration_server_that_dies_is_started_again_but_not_for_ever();
    void a_failed_first_start_is_one_sentence_and_leaves_nothing_data();
    void a_failed_first_start_is_one_sentence_and_leaves_nothing();
    void a_failed_later_start_leaves_what_was_there();
    void a_foreign_server_on_the_port_is_not_taken_for_ours();

 private:
    QString data() const { return folder->filePath(QStringLiteral("the \"home\" & \\1")); }
    QStringList arguments(const QStringList& _more = {}) const {
        return QStringList{BUILD,
                           data(),
                           QString::number(config_port),
                           "--port",
                           QString::number(port),
                           "--sample",
                           SAMPLE,
                           "--log-level-std",
                           "2"} +
               _more;
    }
    void begin(const QStringList& _arguments) {
        process = std::make_unique<QProcess>();
        process->start(START, _arguments);
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
    /// Process ids of its children by program name.
    QMap<QString, qint64> children() const {
        QMap<QString, qint64> found;
        QFile list(QStringLiteral("/proc/%1/task/%1/children").arg(process->processId()));
        if (list.open(QIODevice::ReadOnly)) {
            for (const QByteArray& id : list.readAll().simplified().split(' ')) {
                QFile name("/proc/" + id + "/comm");
                if (name.open(QIODevice::ReadOnly)) {
                    found.insert(QString::fromUtf8(name.readAll().trimmed()), id.toLongLong());
                }
            }
        }
        return found;
    }
    /// Const, so that chained reads do not make references into a temporary.
    const QJsonObject settings() const {
        QFile file(data() + "/settings.json");
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }
    static bool is_running(qint64 _process) {
        return QFile::exists(QStringLiteral("/proc/%1").arg(_process));
    }

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

void tst_start::a_configuration_server_that_dies_is_started_again_but_not_for_ever() {
    begin(arguments());
    QVERIFY(is_ready());
    const QMap<QString, qint64> programs = children();
    process->setReadChannel(QProcess::StandardError);
    const auto kill_and_read = [this](qint64 _config) {
        ::kill(pid_t(_config), SIGKILL);
        while (!process->canReadLine() && process->waitForReadyRead(process_timeout_ms)) {
        }
        return process->readLine();
    };
    QByteArray told = kill_and_read(programs["torlan-config"]);
    QVERIFY2(told.contains("configuration server had ended and was started again"), told);
    const http_t http(QStringLiteral("http://127.0.0.1:%1/").arg(config_port), false);
    QCOMPARE(http.get({}).getData().toObject(), settings());
    told = kill_and_read(children()["torlan-config"]);
    QVERIFY2(told.contains("configuration server has ended"), told);
    QVERIFY(!children().contains("torlan-config"));
    QVERIFY(is_running(programs["torlan-server"]));
    QCOMPARE(end(&QProcess::terminate), 0);
    QVERIFY(!is_running(programs["torlan-server"]));
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
