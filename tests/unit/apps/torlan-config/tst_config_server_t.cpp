#include "config_server_t.h"

#include <QFile>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "unit/apps/torlan-config/support/raw_http.h"

using namespace torlan;

using raw_http::body_of;
using raw_http::request;
using raw_http::status_of;

class tst_config_server_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void values_are_put_and_got();
    void answers_are_json_and_close_the_connection();
    void put_needs_no_content_type();
    void encoded_keys_reach_the_document();
    void foreign_host_and_origin_change_nothing();
    void refusals_are_json_data();
    void refusals_are_json();
    void body_of_exactly_the_limit_is_taken();
    void triggers_run_only_after_an_asked_and_successful_put();
    void port_in_use_is_one_sentence();

 private:
    QByteArray exchange(const QByteArray& _bytes) const {
        return raw_http::exchange(server->port(), _bytes);
    }
    QByteArray document() const { return body_of(exchange(request("GET /"))); }
    QString script(const QByteArray& _text) const {
        QFile file(folder->filePath("trigger"));
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write("#!/bin/sh\n" + _text + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file.fileName();
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<config_server_t> server;
};

void tst_config_server_t::init() {
    server.reset();
    folder = std::make_unique<QTemporaryDir>();
    server = std::make_unique<config_server_t>(
        script("echo run >> \"" + folder->filePath("runs").toUtf8() + '"'));
    QCOMPARE(server->start(folder->filePath("s.json"), 0).error, QString());
}

void tst_config_server_t::values_are_put_and_got() {
    QCOMPARE(document(), "{}");
    const QByteArray put = exchange(request("PUT /a/b", "\"word\""));
    QCOMPARE(status_of(put), 200);
    QCOMPARE(body_of(put), "\"word\"");
    QCOMPARE(body_of(exchange(request("GET /a/b/"))), "\"word\"");
    QCOMPARE(body_of(exchange(request("GET /a"))), "{\"b\":\"word\"}");
    QCOMPARE(document(), "{\"a\":{\"b\":\"word\"}}");
}

void tst_config_server_t::answers_are_json_and_close_the_connection() {
    for (const QByteArray& line : {QByteArray("GET /"), QByteArray("DELETE /")}) {
        const QByteArray answer = exchange(request(line)).toLower();
        QVERIFY(answer.contains("content-type: application/json\r\n"));
        QVERIFY(answer.contains("connection: close\r\n"));
        QVERIFY(!answer.contains("access-control"));
    }
    QVERIFY(exchange(request("DELETE /")).contains("Allow: GET, PUT\r\n"));
}

void tst_config_server_t::put_needs_no_content_type() {
    for (const QByteArray& type : {QByteArray(), QByteArray("Content-Type: text/plain\r\n"),
                                   QByteArray("Content-Type: application/json\r\n")}) {
        QCOMPARE(status_of(exchange(request("PUT /a", "1", "Host: localhost\r\n" + type))), 200);
    }
}

void tst_config_server_t::encoded_keys_reach_the_document() {
    QCOMPARE(status_of(exchange(request("PUT /a%20b/%C3%BC%3F%25/x+y", "1"))), 200);
    QCOMPARE(document(), QByteArray("{\"a b\":{\"\xc3\xbc?%\":{\"x+y\":1}}}"));
    QCOMPARE(body_of(exchange(request("GET /a%20b/%C3%BC%3F%25/x+y"))), "1");
}

void tst_config_server_t::foreign_host_and_origin_change_nothing() {
    for (const QByteArray& headers :
         {QByteArray("Host: evil.example:4321\r\n"), QByteArray(),
          QByteArray("Host: 127.0.0.1\r\nHost: evil.example\r\n"),
          QByteArray("Host: 127.0.0.1\r\nOrigin: http://evil.example\r\n"),
          QByteArray("Host: 127.0.0.1\r\nOrigin: null\r\n")}) {
        QCOMPARE(status_of(exchange(request("PUT /a", "1", headers))), 403);
        QCOMPARE(status_of(exchange(request("GET /", {}, headers))), 403);
    }
    QCOMPARE(document(), "{}");
}

void tst_config_server_t::refusals_are_json_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::newRow("not JSON") << request("PUT /a", "{") << 400;
    QTest::newRow("no value") << request("PUT /a") << 400;
    QTest::newRow("unknown path") << request("GET /a") << 404;
    QTest::newRow("scalar in the way") << request("PUT /k/a", "1") << 409;
    QTest::newRow("dots") << request("PUT /a/../b", "1") << 400;
    QTest::newRow("encoded dots") << request("PUT /a/%2e%2e/b", "1") << 400;
    QTest::newRow("empty key") << request("PUT /a//b", "1") << 400;
    QTest::newRow("zero byte") << request("PUT /a%00b", "1") << 400;
    QTest::newRow("too deep") << request("PUT " + QByteArray("/a").repeated(33), "1") << 400;
    QTest::newRow("too long") << request("PUT /" + QByteArray(3000, 'a'), "1") << 414;
    QTest::newRow("delete") << request("DELETE /k") << 405;
    QTest::newRow("options") << request("OPTIONS /k") << 405;
    QTest::newRow("unknown method") << request("BREW /k") << 405;
    QTest::newRow("no length") << QByteArray("PUT /a HTTP/1.1\r\nHost: localhost\r\n\r\n1") << 411;
    QTest::newRow("chunks") << QByteArray(
                                   "PUT /a HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: "
                                   "chunked\r\n\r\n1\r\n1\r\n0\r\n\r\n")
                            << 411;
    QTest::newRow("garbage") << QByteArray("\x16\x03\x01\r\n\r\n") << 400;
    QTest::newRow("endless head") << "GET / HTTP/1.1\r\nA: " + QByteArray(20000, 'a') << 431;
}

void tst_config_server_t::refusals_are_json() {
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    QCOMPARE(status_of(exchange(request("PUT /k", "1"))), 200);
    const QByteArray answer = exchange(bytes);
    QCOMPARE(status_of(answer), status);
    const QJsonObject packet = QJsonDocument::fromJson(body_of(answer)).object();
    QCOMPARE(packet.value("error").toInt(), status);
    QVERIFY(!packet.value("message").toString().isEmpty());
    QCOMPARE(document(), "{\"k\":1}");
}

void tst_config_server_t::body_of_exactly_the_limit_is_taken() {
    const QByteArray body = '"' + QByteArray(1024 * 1024 - 2, 'x') + '"';
    QCOMPARE(status_of(exchange(request("PUT /a", body))), 200);
    QVERIFY(body_of(exchange(request("GET /a"))) == body);
}

void tst_config_server_t::triggers_run_only_after_an_asked_and_successful_put() {
    const auto runs = [this]() {
        QFile file(folder->filePath("runs"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    auto* runner = server->findChild<trigger_runner_t*>();
    QVERIFY(runner);
    QSignalSpy ran(runner, &trigger_runner_t::ran);
    exchange(request("PUT /a", "1"));
    exchange(request("PUT /a?runtriggers=false", "1"));
    exchange(request("PUT /a?runtriggers", "1"));
    exchange(request("PUT /a?runtriggers=true", "{"));
    exchange(request("PUT /a/b?runtriggers=true", "1"));
    exchange(request("GET /a?runtriggers=true"));
    QVERIFY(!ran.wait(50));
    QCOMPARE(runs(), QByteArray());
    QCOMPARE(body_of(exchange(request("PUT /a?runtriggers=true", "2"))), "2");
    QTRY_COMPARE(ran.size(), 1);
    QCOMPARE(runs(), "run\n");
    exchange(request("PUT /a?x=y&runtriggers=true", "3"));
    QTRY_COMPARE(ran.size(), 2);
}

void tst_config_server_t::port_in_use_is_one_sentence() {
    config_server_t second({});
    const QString error = second.start(folder->filePath("other.json"), server->port()).error;
    QVERIFY(error.contains(QString::number(server->port())));
    QVERIFY(!error.contains('\n'));
}

QTEST_GUILESS_MAIN(tst_config_server_t)
#include "tst_config_server_t.moc"
