#include <sys/stat.h>
#include <unistd.h>

#include <QJsonArray>
#include <QTcpServer>
#include <QtTest>
#include <atomic>
#include <thread>

#include "http/http_t.h"
#include "kit/free_port.h"
#include "kit/http_server_t.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// The server takes its settings from the configuration server, and keeps the installation's id
/// there.
class tst_settings : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void a_new_id_is_kept_and_told_to_clients();
    void an_id_that_is_there_stays();
    void the_client_file_tells_the_broker_of_this_start();
    void the_client_file_is_readable_for_all_and_the_rest_is_not();
    void the_cloud_api_token_reaches_no_other_user();
    void the_cloud_api_token_stands_in_no_log();
    void a_kill_in_the_middle_of_a_put_leaves_a_document_to_start_from();
    void the_log_is_how_the_options_say_and_never_where_the_settings_say();
    void the_options_stand_in_the_log_from_the_first_line_on();
    void drivers_are_never_where_the_settings_say();
    void another_user_s_client_folder_stops_the_start();
    void a_missing_configuration_server_is_one_sentence_after_a_visible_wait();
    void a_configuration_server_that_is_late_is_waited_for();
    void a_stop_while_waiting_ends_at_once_with_status_zero();
    void an_empty_document_is_one_sentence();
    void an_id_that_cannot_be_kept_ends_the_server_with_status_zero_and_its_reason();

 private:
    QJsonObject settings(const QString& _id = {}) const {
        return {{"installation", QJsonObject{{"installation_id", _id}}},
                {"static",
                 QJsonObject{{"torlan",
                              QJsonObject{{"comunication", QJsonObject{{"global", QJsonObject()}}},
                                          {"paths", QJsonObject{{"client_communication", clients()},
                                                                {"logs", clients()}}}}}}}};
    }
    /// Const, so that chained reads do not make references into a temporary.
    static const QJsonObject read(const QString& _file) {
        QFile file(_file);
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }
    /// Settings with a secret, which nothing that the server does needs.
    QJsonObject settings_with_token() const {
        return with(settings("01234567"), "installation/cloud/cloud_api_token", token);
    }
    QString clients() const { return host->data() + "/for/clients"; }
    QString client_file() const { return clients() + "/config/comunication.json"; }
    QString logs() const { return host->data() + "/logs"; }
    QStringList log_lines() const {
        QFile file(logs() + "/server-torlan.log");
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n')
                                              : QStringList();
    }
    QString stored_id() const {
        return read(host->settings_file())["installation"]["installation_id"].toString();
    }
    QString told_id() const { return read(client_file())["global"]["installation_id"].toString(); }

    const QString token = QStringLiteral("token-that-is-nobody-elses");
    std::unique_ptr<host_process_t> host;
};

void tst_settings::init() {
    host = std::make_unique<host_process_t>();
    QVERIFY(host->import(small_home()));
}

void tst_settings::cleanup() {
    host.reset();
}

void tst_settings::a_new_id_is_kept_and_told_to_clients() {
    host->use_settings(settings("  "));
    QVERIFY2(host->start(), qPrintable(host->error()));
    const QString id = told_id();
    QVERIFY2(QRegularExpression("^[0-9a-f]{32}$").match(id).hasMatch(), qPrintable(id));
    QCOMPARE(stored_id(), id);
    const QJsonObject document = read(host->settings_file());
    QCOMPARE(document["static"]["torlan"]["comunication"]["global"]["installation_id"], id);
    QCOMPARE(host->stop(), 0);
    // The second start finds it, and tells it again.
    QVERIFY2(host->start(), qPrintable(host->error()));
    QCOMPARE(stored_id(), id);
    QCOMPARE(told_id(), id);
}

void tst_settings::an_id_that_is_there_stays() {
    host->use_settings(settings(" given "));
    QVERIFY2(host->start(), qPrintable(host->error()));
    QCOMPARE(stored_id(), QString(" given "));
    QCOMPARE(told_id(), QString(" given "));
}

void tst_settings::the_client_file_tells_the_broker_of_this_start() {
    host->use_settings(settings());
    const int ws_port = free_port();
    QVERIFY2(host->start({"--ws-port", QString::number(ws_port)}), qPrintable(host->error()));
    QCOMPARE(read(client_file())["mqtt"].toObject(),
             (QJsonObject{{"host", "127.0.0.1"}, {"port", host->port()}, {"ws_port", ws_port}}));
    QCOMPARE(host->stop(), 0);
    QVERIFY2(host->start(), qPrintable(host->error()));
    QCOMPARE(read(client_file())["mqtt"].toObject(),
             (QJsonObject{{"host", "127.0.0.1"}, {"port", host->port()}}));
}

void tst_settings::the_client_file_is_readable_for_all_and_the_rest_is_not() {
    host->use_settings(settings());
    QVERIFY2(host->start(), qPrintable(host->error()));
    const auto mode = [](const QString& path) {
        struct stat status = {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0
                   ? int(status.st_mode & 07777)
                   : -1;
    };
    QCOMPARE(mode(client_file()), 0644);
    QCOMPARE(mode(clients() + "/config"), 0755);
    QCOMPARE(mode(clients()), 0755);
    QCOMPARE(mode(host->settings_file()), 0600);
    QCOMPARE(mode(logs()) & 0007, 0);
}

void tst_settings::the_cloud_api_token_reaches_no_other_user() {
    if (::geteuid() != 0) {
        QSKIP("only root can become another user");
    }
    QVERIFY(QFile::setPermissions(host->data(), QFile::Permissions(0x7055)));  // anybody may enter
    host->use_settings(settings_with_token());
    QVERIFY2(host->start({"--log-level-file", "6"}), qPrintable(host->error()));
    const QString address = QStringLiteral("http://127.0.0.1:%1/").arg(host->config_port());
    QCOMPARE(http_t(address, false).get("installation/cloud/cloud_api_token").getData(),
             QJsonValue(token));

    // All that another user can read: the server's answers, files, what other processes show.
    QProcess stranger;
    stranger.start(
        "setpriv",
        {"--reuid=65534", "--regid=65534", "--clear-groups", "bash", "-c",
         "for path in / /installation /installation/cloud/cloud_api_token; do "
         "exec 3<>/dev/tcp/127.0.0.1/$0; printf 'GET %s HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n' "
         "$path >&3; cat <&3; done; "
         "find \"$1\" /run/torlan* -type f -readable -exec cat {} + 2>/dev/null; "
         "cat /proc/[0-9]*/cmdline /proc/[0-9]*/environ 2>/dev/null; true",
         QString::number(host->config_port()), host->data()});
    QVERIFY(stranger.waitForFinished());
    const QByteArray seen = stranger.readAllStandardOutput();
    QCOMPARE(seen.count("HTTP/1.1 403"), 3);
    QVERIFY(seen.contains("installation_id"));  // the client file is for everybody
    QVERIFY(seen.contains("torlan-server"));
    QVERIFY(!seen.contains(token.toUtf8()));
}

void tst_settings::the_cloud_api_token_stands_in_no_log() {
    host->use_settings(settings_with_token());
    QVERIFY2(host->start({"--log-level-file", "6", "--log-level-std", "6"}),
             qPrintable(host->error()));
    QCOMPARE(host->stop(), 0);
    const QByteArray shown = host->start_output() + host->process().readAllStandardOutput() +
                             host->process().readAllStandardError();
    QVERIFY(log_lines().size() > 10);
    QVERIFY(!log_lines().join(u'\n').contains(token));
    QVERIFY(!shown.contains(token.toUtf8()));
    QVERIFY(!QJsonDocument(read(client_file())).toJson().contains(token.toUtf8()));
}

void tst_settings::a_kill_in_the_middle_of_a_put_leaves_a_document_to_start_from() {
    const QString file = host->settings_file();
    const QString padding(200'000, u'x');
    host->use_settings(settings());
    {
        config_process_t config(file);
        std::atomic<int> written = 0;
        std::thread writer([&]() {
            const http_t http(config.url(), false);
            while (http.put(QStringLiteral("padding/%1").arg(written % 4), padding).getError() ==
                   0) {
                ++written;
            }
        });
        QElapsedTimer clock;
        clock.start();
        while (written < 5 && clock.elapsed() < process_timeout_ms) {
            std::this_thread::yield();
        }
        ::kill(pid_t(config.process.processId()), SIGKILL);
        writer.join();
        QVERIFY(written >= 5);
    }
    const QJsonObject left = read(file);
    QCOMPARE(left["padding"].toObject().size(), 4);
    for (const auto& text : left["padding"].toObject()) {
        QCOMPARE(text.toString(), padding);
    }
    QVERIFY2(host->start(), qPrintable(host->error()));
    QCOMPARE(told_id(), stored_id());
    QVERIFY(!told_id().isEmpty());
    QCOMPARE(read(file)["padding"].toObject(), left["padding"].toObject());
}

void tst_settings::the_log_is_how_the_options_say_and_never_where_the_settings_say() {
    host->use_settings(settings());
    QVERIFY2(host->start({"--log-level-std", "6", "--log-level-file", "2"}),
             qPrintable(host->error()));
    QVERIFY(host->start_output().contains("] server/"));
    QVERIFY(host->start_output().contains("[6] "));
    QCOMPARE(host->stop(), 0);
    QVERIFY(QFile::exists(logs() + "/server-torlan.log"));
    QCOMPARE(log_lines().filter("[3] ") + log_lines().filter("[4] "), QStringList());
    QCOMPARE(QDir(clients()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
             QStringList{"config"});
    const QString elsewhere = host->data() + "/elsewhere";
    QVERIFY2(host->start({"--logs", elsewhere}), qPrintable(host->error()));
    QVERIFY(host->start_output().contains(
        QStringLiteral("The log is in %1, not in the settings' folder %2")
            .arg(elsewhere, clients())
            .toUtf8()));
    QVERIFY(QFile::exists(elsewhere + "/server-torlan.log"));
}

void tst_settings::the_options_stand_in_the_log_from_the_first_line_on() {
    host->use_settings(settings("the id"));
    QVERIFY2(host->start({"--log-level-file", "6", "--log-size", "7", "--log-rotate", "3"}),
             qPrintable(host->error()));
    QCOMPARE(host->stop(), 0);
    const QStringList lines = log_lines();
    // Before there was a log, the device was asked and the settings were read.
    const QString early = " Save client configuration file to: " + client_file();
    QCOMPARE(lines.filter(early).size(), 1);
    const auto line = [&lines](const QString& text) {
        const QStringList found = lines.filter(QRegularExpression(" print " + text + "$"));
        return found.size() == 1 ? lines.indexOf(found.first()) : -1;
    };
    const QStringList expected{"Build commit: [0-9a-z-]+",
                               "Build time: \\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ",
                               "Url config server: http://127.0.0.1:4321/",
                               "Installation id: the id",
                               "Folder Log: " + QRegularExpression::escape(clients()),
                               "Folder client: " + QRegularExpression::escape(clients()),
                               "Starting server with log level file: 6",
                               "Starting server with log size: 7 MB",
                               "Starting server with log rotation: 3",
                               "Dalay to save: 500 msec.",
                               "Iteration force save: 5"};
    qsizetype before = lines.indexOf(lines.filter(early).first());
    for (const QString& text : expected) {
        QVERIFY2(line(text) > before, qPrintable(text));
        before = line(text);
    }
    QVERIFY(lines.indexOf(lines.filter("Loaded driver").value(0)) > before);
}

void tst_settings::drivers_are_never_where_the_settings_say() {
    host->use_settings(with(settings(), "static/torlan/paths/plugins", host->data() + "/for"));
    QVERIFY2(host->start(), qPrintable(host->error()));
    QVERIFY(host->start_output().contains("not in the settings' folder " + host->data().toUtf8() +
                                          "/for"));
}

void tst_settings::another_user_s_client_folder_stops_the_start() {
    host->use_settings(settings());
    QVERIFY(QDir().mkpath(clients()));
    QCOMPARE(::chmod(QFile::encodeName(clients()).constData(), 0777), 0);
    QVERIFY(!host->start());
    QCOMPARE(host->process().exitCode(), 1);
    QVERIFY2(host->error().contains("The client file is not written: " + clients()),
             qPrintable(host->error()));
    QCOMPARE(host->error().count('\n'), 1);
}

void tst_settings::a_missing_configuration_server_is_one_sentence_after_a_visible_wait() {
    const QString port = QString::number(free_port());
    QProcess server;
    QElapsedTimer clock;
    clock.start();
    server.start(TORLAN_SERVER, {"--data", host->data() + "/new", "--config-port", port,
                                 "--config-wait", "1", "--sample", host->data() + "/import.json"});
    QVERIFY(server.waitForFinished(process_timeout_ms));
    QVERIFY(clock.elapsed() >= 1000);
    QCOMPARE(server.exitCode(), 1);
    const QByteArray error = server.readAllStandardError();
    QCOMPARE(error.count('\n'), 1);
    QVERIFY2(error.contains("configuration server") && error.contains(port.toUtf8()), error);
    const QByteArray shown = server.readAllStandardOutput();
    QVERIFY2(shown.startsWith("torlan: waiting up to 1 s") && shown.contains(port.toUtf8()), shown);
    QVERIFY(!QFile::exists(host->data() + "/new"));
}

void tst_settings::a_configuration_server_that_is_late_is_waited_for() {
    host->use_settings(settings("late"));
    const quint16 port = free_port();
    QProcess server;
    server.start(TORLAN_SERVER, {"--data", host->data(), "--port", QString::number(host->port()),
                                 "--config-port", QString::number(port), "--log-level-std", "0"});
    QVERIFY(server.waitForReadyRead(process_timeout_ms));
    QVERIFY(server.readLine().startsWith("torlan: waiting"));
    const config_process_t config(host->settings_file(), {"--port", QString::number(port)});
    while (!server.canReadLine() && server.waitForReadyRead(process_timeout_ms)) {
    }
    const QByteArray line = server.readLine();
    QVERIFY2(line.startsWith("torlan: ready"), line);
    server.terminate();
    QVERIFY(server.waitForFinished(process_timeout_ms));
    QCOMPARE(server.exitCode(), 0);
}

void tst_settings::a_stop_while_waiting_ends_at_once_with_status_zero() {
    QProcess server;
    server.start(TORLAN_SERVER, {"--data", host->data(), "--config-port",
                                 QString::number(free_port()), "--config-wait", "3600"});
    QVERIFY(server.waitForReadyRead(process_timeout_ms));
    QElapsedTimer clock;
    clock.start();
    server.terminate();
    QVERIFY(server.waitForFinished(process_timeout_ms));
    QVERIFY2(clock.elapsed() < 3000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(server.exitStatus(), QProcess::NormalExit);
    QCOMPARE(server.exitCode(), 0);
}

void tst_settings::an_empty_document_is_one_sentence() {
    host->use_settings({});
    QVERIFY(!host->start());
    QCOMPARE(host->process().exitCode(), 1);
    QCOMPARE(host->error().count('\n'), 1);
    QVERIFY2(host->error().contains("no settings"), qPrintable(host->error()));
}

void tst_settings::an_id_that_cannot_be_kept_ends_the_server_with_status_zero_and_its_reason() {
    const QByteArray document = QJsonDocument(settings()).toJson();
    const kit::http_server_t refusing([&document](const auto& request) {
        return kit::http_server_t::json(
            document, request.method == "PUT" ? "500 Internal Server Error" : "200 OK");
    });
    QProcess server;
    server.start(TORLAN_SERVER,
                 {"--data", host->data(), "--config-port", QString::number(refusing.port())});
    QVERIFY(server.waitForFinished(process_timeout_ms));
    QCOMPARE(server.exitStatus(), QProcess::NormalExit);
    QCOMPARE(server.exitCode(), 0);
    const QByteArray shown = server.readAllStandardOutput();
    QVERIFY2(shown.contains("check_HTTP_InstallationId Unable to genarate installation id ...\n"),
             shown);
    QVERIFY(!shown.contains("torlan: ready"));
}

QTEST_GUILESS_MAIN(tst_settings)
#include "tst_settings.moc"
