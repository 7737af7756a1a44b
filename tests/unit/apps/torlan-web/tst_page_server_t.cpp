#include "page_server_t.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include "unit/apps/torlan-config/support/raw_http.h"

using namespace torlan;

/// Seen from the wire.
class tst_page_server_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        write("index.html", "<p>page");
        server = std::make_unique<page_server_t>(folder->filePath("facts"), 9001);
        QCOMPARE(server->start(folder->path(), 0).error, QString());
    }

    void page_comes_with_its_headers() {
        const QByteArray answer = get("GET /");
        QVERIFY2(answer.startsWith("HTTP/1.1 200 "), answer);
        QVERIFY(answer.contains("\r\nContent-Type: text/html; charset=utf-8\r\n"));
        QVERIFY(answer.contains("\r\nContent-Security-Policy: default-src 'none';"));
        QCOMPARE(raw_http::body_of(answer), QByteArray("<p>page"));
    }

    void head_has_no_body() {
        const QByteArray answer = get("HEAD /");
        QVERIFY(answer.contains("\r\nContent-Length: 7\r\n"));
        QCOMPARE(raw_http::body_of(answer), QByteArray());
    }

    void large_file_comes_whole() {
        const QByteArray large(3'000'000, 'x');
        write("large.js", large);
        server = std::make_unique<page_server_t>(QString(), 9001);
        QVERIFY(server->start(folder->path(), 0).is_ok());
        QCOMPARE(raw_http::body_of(get("GET /large.js")).size(), large.size());
    }

    void query_is_no_part_of_the_name() {
        QCOMPARE(raw_http::status_of(get("GET /index.html?x=1")), 200);
    }

    void what_is_not_there_is_told() {
        QCOMPARE(raw_http::status_of(get("GET /other.html")), 404);
        QCOMPARE(raw_http::status_of(get("GET /../index.html")), 404);
        QCOMPARE(raw_http::status_of(get("PUT /")), 405);
    }

    void other_names_of_this_machine_are_refused() {
        QCOMPARE(
            raw_http::status_of(raw_http::exchange(
                server->serverPort(), raw_http::request("GET /", {}, "Host: evil.example\r\n"))),
            403);
    }

    void page_learns_what_the_server_tells_data() {
        QTest::addColumn<QByteArray>("facts");
        QTest::addColumn<QString>("topic");
        QTest::newRow("told") << QByteArray("{\"connection\": \"local/a/connection\"}")
                              << "local/a/connection";
        QTest::newRow("not told") << QByteArray() << QString();
        QTest::newRow("broken") << QByteArray("{\"connection\": \"loc") << QString();
        QTest::newRow("too large")
            << "{\"connection\": \"" + QByteArray(5000, 'x') + "\"}" << QString();
    }
    void page_learns_what_the_server_tells() {
        QFETCH(QByteArray, facts);
        if (!facts.isEmpty()) {
            write("facts", facts);
        }
        const QByteArray answer = get("GET /console.json");
        QVERIFY(answer.contains("\r\nContent-Type: application/json\r\n"));
        const QJsonObject told = QJsonDocument::fromJson(raw_http::body_of(answer)).object();
        QCOMPARE(told["ws_port"].toInt(), 9001);
        QTEST(told["connection"].toString(), "topic");
    }

    void only_loopback_is_listened_on() {
        QCOMPARE(server->serverAddress(), QHostAddress(QHostAddress::LocalHost));
    }

    void port_in_use_is_told() {
        page_server_t other(QString(), 9001);
        QVERIFY(other.start(folder->path(), server->serverPort())
                    .error.contains(QString::number(server->serverPort())));
    }

    void too_many_connections_are_refused_and_recover() {
        std::vector<std::unique_ptr<QTcpSocket>> idle;
        for (int i = 0; i < page_server_t::max_connections; ++i) {
            idle.push_back(raw_http::connected(server->serverPort()));
            QVERIFY(QTest::qWaitFor(
                [&]() { return idle.back()->state() == QTcpSocket::ConnectedState; }));
        }
        QTRY_COMPARE(raw_http::status_of(get("GET /")), 503);
        idle.clear();
        QTRY_COMPARE(raw_http::status_of(get("GET /")), 200);
    }

 private:
    QByteArray get(const QByteArray& _line) const {
        return raw_http::exchange(server->serverPort(), raw_http::request(_line));
    }
    void write(const QString& _name, const QByteArray& _bytes) {
        QFile file(folder->filePath(_name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(_bytes);
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<page_server_t> server;
};

QTEST_GUILESS_MAIN(tst_page_server_t)
#include "tst_page_server_t.moc"
