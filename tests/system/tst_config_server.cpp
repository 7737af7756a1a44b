#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <thread>

#include "http/http_t.h"
#include "system/support/config_process_t.h"

using support::config_process_t;
using support::process_timeout_ms;

namespace {

struct ended_t {
    int status = -1;
    QByteArray output;
    QByteArray error;
};

ended_t run(const QStringList& _arguments) {
    QProcess process;
    process.start(QStringLiteral(TORLAN_CONFIG), _arguments);
    if (!process.waitForFinished(process_timeout_ms)) {
        return {};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

/// The status that the server gives to raw bytes.
int status_of(quint16 _port, const QByteArray& _bytes) {
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, _port);
    socket.write(_bytes);
    while (socket.state() != QTcpSocket::UnconnectedState && socket.bytesAvailable() < 12 &&
           socket.waitForReadyRead(process_timeout_ms)) {
    }
    return socket.readAll().mid(9, 3).toInt();
}

}  // namespace

class tst_config_server : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void first_start_makes_an_empty_document();
    void values_survive_a_clean_end_data();
    void values_survive_a_clean_end();
    void kill_in_a_storm_of_writes_loses_no_acknowledged_one();
    void two_writers_lose_neither_write();
    void foreign_page_changes_nothing();
    void large_body_changes_nothing();
    void trigger_sees_the_new_document();
    void start_that_fails_is_one_sentence_data();
    void start_that_fails_is_one_sentence();
    void no_sentence_shows_a_value();
    void port_in_use_is_one_sentence();
    void second_server_on_a_file_is_refused();
    void without_options_port_4321_and_a_file_here_are_used();

 private:
    QJsonObject document_on_disk() const {
        QFile source(file);
        return source.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(source.readAll()).object()
                                                : QJsonObject();
    }
    void put_bytes(const QString& _path, const QByteArray& _bytes) const {
        QFile target(_path);
        QVERIFY(target.open(QIODevice::WriteOnly));
        target.write(_bytes);
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString file;
};

void tst_config_server::init() {
    folder = std::make_unique<QTemporaryDir>();
    file = folder->filePath("settings.json");
}

void tst_config_server::first_start_makes_an_empty_document() {
    config_process_t config(file);
    QCOMPARE(config.ready_line,
             "torlan-config: ready on http://127.0.0.1:" + QByteArray::number(config.port()) + "/");
    const http_t http(config.url(), false);
    QCOMPARE(http.get({}).getError(), 0);
    QCOMPARE(http.get({}).getData(), QJsonValue(QJsonObject()));
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(file).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777, 0600u);
    QCOMPARE(config.end(SIGTERM), 0);
    QVERIFY(config.process.readAllStandardError().contains("settings.json"));
    QCOMPARE(config.process.readAllStandardOutput(),
             ::geteuid() != 0 ? QByteArray()
                              : QByteArray("torlan-config: runs as root, with few of its "
                                           "capabilities; --user gives it up\n"));
}

void tst_config_server::values_survive_a_clean_end_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void tst_config_server::values_survive_a_clean_end() {
    QFETCH(int, signal);
    {
        config_process_t config(file);
        const http_t http(config.url(), false);
        QCOMPARE(http.put("installation/installation_id?runtriggers=true", "id-1").getError(), 0);
        QCOMPARE(http.put("static/torlan/paths", QJsonObject{{"logs", "/l"}}).getError(), 0);
        QCOMPARE(http.get("installation/installation_id").getData(), "id-1");
        QCOMPARE(http.get("unknown").getError(), 404);
        QCOMPARE(config.end(signal), 0);
    }
    config_process_t config(file);
    const http_t http(config.url(), false);
    QCOMPARE(http.get("static/torlan/paths/logs/").getData(), "/l");
    QCOMPARE(http.get({}).getData().toObject(), document_on_disk());
}

void tst_config_server::kill_in_a_storm_of_writes_loses_no_acknowledged_one() {
    int acknowledged = 0;
    const QString padding(20000, u'x');  // so that a torn write could be seen
    for (int round = 0; round < 5; ++round) {
        config_process_t config(file);
        const http_t http(config.url(), false);
        QVERIFY2(!config.ready_line.isEmpty(), "it did not start on what the kill left");
        const QJsonObject found = http.get({}).getData().toObject();
        QCOMPARE(found.value("count").toObject().size() >= acknowledged, true);
        for (int i = 1; i <= acknowledged; ++i) {
            QVERIFY(found.value("count").toObject().contains(QString::number(i)));
        }
        QCOMPARE(http.put("padding", padding).getError(), 0);

        std::atomic<int> last = acknowledged;
        std::thread writer([&]() {
            while (http.put(QStringLiteral("count/%1").arg(last + 1), true).getError() == 0) {
                ++last;
            }
        });
        const int goal = acknowledged + 10 + round;
        QElapsedTimer timer;
        timer.start();
        while (last < goal && timer.elapsed() < process_timeout_ms) {
            std::this_thread::yield();
        }
        ::kill(pid_t(config.process.processId()), SIGKILL);
        writer.join();
        QVERIFY(last >= goal);
        acknowledged = last;
        const QJsonObject left = document_on_disk();
        QVERIFY2(left.contains("padding"), "the document on the disk is torn");
        QCOMPARE(left.value("padding").toString(), padding);
    }
}

void tst_config_server::two_writers_lose_neither_write() {
    config_process_t config(file);
    std::atomic<int> failures = 0;
    const auto write = [&](const QString& name) {
        const http_t http(config.url(), false);
        for (int i = 0; i < 40; ++i) {
            const QString path = QStringLiteral("shared/%1-%2").arg(name).arg(i);
            failures += http.put(path, i).getError() == 0 ? 0 : 1;
        }
    };
    std::thread first(write, "first");
    std::thread second(write, "second");
    first.join();
    second.join();
    QCOMPARE(failures.load(), 0);
    QCOMPARE(document_on_disk().value("shared").toObject().size(), 80);
}

void tst_config_server::foreign_page_changes_nothing() {
    config_process_t config(file);
    const QByteArray line = "PUT /a HTTP/1.1\r\nContent-Length: 1\r\n";
    QCOMPARE(status_of(config.port(), line + "Host: evil.example:4321\r\n\r\n1"), 403);
    QCOMPARE(
        status_of(config.port(), line + "Host: 127.0.0.1\r\nOrigin: http://evil.example\r\n\r\n1"),
        403);
    QCOMPARE(document_on_disk(), QJsonObject());
    QCOMPARE(status_of(config.port(), line + "Host: 127.0.0.1\r\n\r\n1"), 200);
    QCOMPARE(document_on_disk(), (QJsonObject{{"a", 1}}));
}

void tst_config_server::large_body_changes_nothing() {
    config_process_t config(file);
    const http_t http(config.url(), false);
    QCOMPARE(http.put("a", QString(1024 * 1024, u'x')).getError(), 413);
    QCOMPARE(document_on_disk(), QJsonObject());
    QCOMPARE(http.put("a", QString(1024 * 1024 - 2, u'x')).getError(), 0);
    QCOMPARE(http.get("a").getData().toString().size(), 1024 * 1024 - 2);
}

void tst_config_server::trigger_sees_the_new_document() {
    const QString trigger = folder->filePath("trigger");
    const QString copy = folder->filePath("copy");
    put_bytes(trigger, "#!/bin/sh\ncp '" + file.toUtf8() + "' '" + copy.toUtf8() + ".new' && mv '" +
                           copy.toUtf8() + ".new' '" + copy.toUtf8() + "'\n");
    QVERIFY(QFile::setPermissions(trigger, QFile::ReadOwner | QFile::ExeOwner));
    config_process_t config(file, {"--trigger", trigger});
    QCOMPARE(http_t(config.url(), false).put("a?runtriggers=true", "new").getError(), 0);
    QTRY_VERIFY(QFile::exists(copy));
    QFile source(copy);
    QVERIFY(source.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(source.readAll()).object(), (QJsonObject{{"a", "new"}}));
}

void tst_config_server::start_that_fails_is_one_sentence_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("names");
    QTest::addColumn<int>("status");
    QTest::newRow("broken document")
        << QStringList{"--file", "broken.json"} << QByteArray("broken.json") << 1;
    QTest::newRow("no such folder")
        << QStringList{"--file", "no/s.json"} << QByteArray("no/s.json") << 1;
    QTest::newRow("folder in a file")
        << QStringList{"--file", "broken.json/s.json"} << QByteArray("broken.json/s.json") << 1;
    QTest::newRow("port not a number")
        << QStringList{"--file", "s.json", "--port", "x"} << QByteArray("not \"x\"") << 2;
    QTest::newRow("port too large")
        << QStringList{"--file", "s.json", "--port", "65536"} << QByteArray("65536") << 2;
    QTest::newRow("unknown option") << QStringList{"--nothing"} << QByteArray("nothing") << 2;
    QTest::newRow("unknown argument") << QStringList{"stray"} << QByteArray("stray") << 2;
}

void tst_config_server::start_that_fails_is_one_sentence() {
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, names);
    QFETCH(int, status);
    put_bytes(folder->filePath("broken.json"), "{\"a\":");
    if (arguments.first() == "--file") {
        arguments[1] = folder->filePath(arguments.at(1));
    }
    const ended_t ended = run(arguments);
    QCOMPARE(ended.status, status);
    QCOMPARE(ended.output, QByteArray());
    QVERIFY2(ended.error.contains(names), ended.error.constData());
    QCOMPARE(ended.error.count('\n'), 1);
    QVERIFY(!QFile::exists(folder->filePath("s.json")));
}

void tst_config_server::no_sentence_shows_a_value() {
    const QByteArray secret = "token-that-nobody-sees";
    put_bytes(file, "{\"token\": \"" + secret + "\"");
    const ended_t broken = run({"--file", file, "--port", "0"});
    QCOMPARE(broken.status, 1);
    QVERIFY(!broken.error.isEmpty());
    QVERIFY(!(broken.output + broken.error).contains(secret));

    put_bytes(file, "{\"token\": \"" + secret + "\"}");
    config_process_t config(file);
    const http_t http(config.url(), false);
    QCOMPARE(http.get("token").getData(), QJsonValue(QString::fromLatin1(secret)));
    // A body that is no value, and a value that has no keys.
    QCOMPARE(status_of(config.port(),
                       "PUT /token HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 24"
                       "\r\n\r\n\"" +
                           secret + " "),
             400);
    QCOMPARE(http.put("token/deeper", "x").getError(), 409);
    QCOMPARE(config.end(SIGTERM), 0);
    QVERIFY(!config.process.readAllStandardOutput().contains(secret));
    QVERIFY(!config.process.readAllStandardError().contains(secret));
}

void tst_config_server::port_in_use_is_one_sentence() {
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    const QString port = QString::number(other.serverPort());
    const ended_t ended = run({"--file", file, "--port", port});
    QCOMPARE(ended.status, 1);
    QVERIFY(ended.error.contains(port.toUtf8()));
    QCOMPARE(ended.error.count('\n'), 1);
    QVERIFY(!QFile::exists(file));
}

void tst_config_server::second_server_on_a_file_is_refused() {
    config_process_t first(file);
    QCOMPARE(http_t(first.url(), false).put("a", 1).getError(), 0);
    const ended_t second = run({"--file", file, "--port", "0"});
    QCOMPARE(second.status, 1);
    QVERIFY(second.error.contains("another server"));
    QCOMPARE(http_t(first.url(), false).get("a").getData(), 1);
}

// The port is taken here, or by whoever had it before: nothing is served on it.
void tst_config_server::without_options_port_4321_and_a_file_here_are_used() {
    QTcpServer other;
    other.listen(QHostAddress::LocalHost, 4321);
    const ended_t ended = run({"--file", file});
    QCOMPARE(ended.status, 1);
    QVERIFY2(ended.error.contains("127.0.0.1, port 4321:"), ended.error.constData());

    QProcess process;
    process.setWorkingDirectory(folder->path());
    process.start(QStringLiteral(TORLAN_CONFIG), {"--port", "0"});
    QVERIFY(process.waitForReadyRead(process_timeout_ms));
    QCOMPARE(document_on_disk(), QJsonObject());
    QVERIFY(QFile::exists(file));
    process.kill();
    QVERIFY(process.waitForFinished(process_timeout_ms));
}

QTEST_GUILESS_MAIN(tst_config_server)
#include "tst_config_server.moc"
