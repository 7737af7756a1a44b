#include <QElapsedTimer>
#include <QJsonObject>
#include <QScopeGuard>
#include <QTcpServer>
#include <QTest>
#include <QTimer>
#include <thread>

#include "http/http_exchange_t.h"
#include "http/http_t.h"
#include "kit/free_port.h"
#include "kit/http_server_t.h"

using kit::http_server_t;
using answer_t = http_server_t::answer_t;

class tst_http_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void get_asks_base_and_path();
    void put_sends_the_value_as_json_data();
    void put_sends_the_value_as_json();
    void answer_is_any_json_value_data();
    void answer_is_any_json_value();
    void answer_without_content_data();
    void answer_without_content();
    void misbehaviour_is_an_error_data();
    void misbehaviour_is_an_error();
    void whole_exchange_ends_within_the_timeout_data();
    void whole_exchange_ends_within_the_timeout();
    void answer_above_the_limit_is_refused();
    void endless_head_is_refused();
    void head_above_the_limit_is_refused();
    void nobody_listening_is_an_error();
    void unusable_address_is_an_error_data();
    void unusable_address_is_an_error();
    void other_protocols_are_never_spoken();
    void address_is_encoded_and_kept_as_given();
    void redirect_is_not_followed();
    void proxy_of_the_environment_is_never_used_for_loopback();
    void call_runs_no_event_loop();
    void calls_from_several_threads_do_not_meet();
    void mapped_base_leads_to_the_other_port();
    void only_loopback_may_be_mapped_data();
    void only_loopback_may_be_mapped();
    void error_text_holds_no_body_and_no_query();
    void fresh_response_is_an_error();
    void shipped_constants();
};

// A closed port of the environment: a request that took this proxy would fail.
void tst_http_t::initTestCase() {
    for (const char* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "all_proxy", "ALL_PROXY"}) {
        qputenv(name, "http://127.0.0.1:9");
    }
    qunsetenv("no_proxy");
    qunsetenv("NO_PROXY");
}

void tst_http_t::get_asks_base_and_path() {
    http_server_t server(http_server_t::json("{\"a\":1}"));
    const http_t http(server.url(), false);
    QCOMPARE(http.get({}).getData().toObject(), (QJsonObject{{"a", 1}}));
    QCOMPARE(http.get("b/c?d=e").getStatus(), 200);
    QCOMPARE(server.requests().at(0).method, "GET");
    QCOMPARE(server.requests().at(0).target, "/");
    QCOMPARE(server.requests().at(1).target, "/b/c?d=e");
}

void tst_http_t::put_sends_the_value_as_json_data() {
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("string") << QJsonValue("id-1") << QByteArray("\"id-1\"");
    QTest::newRow("number") << QJsonValue(7) << QByteArray("7");
    QTest::newRow("object") << QJsonValue(QJsonObject{{"a", true}}) << QByteArray("{\"a\":true}");
    const QString large(2000000, u'x');
    QTest::newRow("large") << QJsonValue(large) << QByteArray('"' + large.toUtf8() + '"');
}

void tst_http_t::put_sends_the_value_as_json() {
    QFETCH(QJsonValue, value);
    QFETCH(QByteArray, body);
    http_server_t server(http_server_t::json("{}"));
    const httpresponse_t response = http_t(server.url(), false).put("a/b?runtriggers=true", value);
    QCOMPARE(response.getError(), 0);
    QCOMPARE(server.requests().at(0).method, "PUT");
    QCOMPARE(server.requests().at(0).target, "/a/b?runtriggers=true");
    QVERIFY(server.requests().at(0).body == body);
    QVERIFY(server.requests().at(0).head.contains("Content-Type: application/json"));
    QVERIFY(!server.requests().at(0).head.toLower().contains("expect:"));
}

void tst_http_t::answer_is_any_json_value_data() {
    QTest::addColumn<answer_t>("answer");
    QTest::addColumn<QJsonValue>("value");
    const auto json = [](const QByteArray& body) { return http_server_t::json(body); };
    QTest::newRow("string") << json("\"word\"") << QJsonValue("word");
    QTest::newRow("number") << json("1.5") << QJsonValue(1.5);
    QTest::newRow("null") << json("null") << QJsonValue(QJsonValue::Null);
    QTest::newRow("object") << json("{\"a\":\"b\"}") << QJsonValue(QJsonObject{{"a", "b"}});
    QTest::newRow("created") << http_server_t::json("true", "201 Created") << QJsonValue(true);
    QTest::newRow("without a length")
        << answer_t{"HTTP/1.1 200 OK\r\n\r\n{\"a\":\"b\"}"} << QJsonValue(QJsonObject{{"a", "b"}});
    QTest::newRow("in chunks")
        << answer_t{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                    "2\r\n\"a\r\n2\r\nb\"\r\n0\r\n\r\n"}
        << QJsonValue("ab");
    QTest::newRow("in chunks with a trailer")
        << answer_t{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTrailer: X-T\r\n\r\n"
                    "1\r\n5\r\n0\r\nX-T: 1\r\n\r\n"}
        << QJsonValue(5);
    QTest::newRow("after an interim answer")
        << answer_t{"HTTP/1.1 100 Continue\r\n\r\n" + json("4").bytes} << QJsonValue(4);
    QTest::newRow("connection kept open")
        << answer_t{http_server_t::json("3").bytes, false} << QJsonValue(3);
}

void tst_http_t::answer_is_any_json_value() {
    QFETCH(answer_t, answer);
    QFETCH(QJsonValue, value);
    http_server_t server(answer);
    const httpresponse_t response = http_t(server.url(), false).get({});
    QCOMPARE(response.getError(), 0);
    QCOMPARE(response.getErrorText(), QString());
    QCOMPARE(response.getData(), value);
}

void tst_http_t::answer_without_content_data() {
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<int>("get_error");
    QTest::newRow("204") << QByteArray("204 No Content") << 0;
    QTest::newRow("200") << QByteArray("200 OK") << int(httpresponse_t::not_json);
}

void tst_http_t::answer_without_content() {
    QFETCH(QByteArray, status);
    QFETCH(int, get_error);
    http_server_t server(answer_t{"HTTP/1.1 " + status + "\r\nContent-Length: 0\r\n\r\n"});
    const http_t http(server.url(), false);
    QCOMPARE(http.get({}).getError(), get_error);
    QVERIFY(http.get({}).getData().isUndefined());
    QCOMPARE(http.put("a", 1).getError(), 0);
    QVERIFY(http.put("a", 1).getData().isUndefined());
}

void tst_http_t::misbehaviour_is_an_error_data() {
    QTest::addColumn<answer_t>("answer");
    QTest::addColumn<int>("error");
    const auto status = [](const QByteArray& text) { return http_server_t::json("{}", text); };
    const int broken = httpresponse_t::broken_answer;
    const int not_json = httpresponse_t::not_json;
    QTest::newRow("301") << status("301 Moved") << 301;
    QTest::newRow("304") << status("304 Not Modified") << 304;
    QTest::newRow("400") << status("400 Bad Request") << 400;
    QTest::newRow("404") << status("404 Not Found") << 404;
    QTest::newRow("500") << status("500 Internal Server Error") << 500;
    QTest::newRow("599") << status("599 Odd") << 599;
    QTest::newRow("closed at once") << answer_t{} << broken;
    QTest::newRow("half a status line") << answer_t{"HTTP/1."} << broken;
    QTest::newRow("half a head") << answer_t{"HTTP/1.1 200 OK\r\nContent-Le"} << broken;
    QTest::newRow("half a head after an interim answer")
        << answer_t{"HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nA: b\r\n"} << broken;
    QTest::newRow("half a body")
        << answer_t{"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"a\":1}"} << broken;
    QTest::newRow("half a body, valid so far")
        << answer_t{"HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n12"} << broken;
    // A length cut to 32 bits would be the two bytes that come.
    QTest::newRow("half a body, length above 32 bits")
        << answer_t{"HTTP/1.1 200 OK\r\nContent-Length: 4294967298\r\n\r\n12"} << broken;
    QTest::newRow("half a body, length above 31 bits")
        << answer_t{"HTTP/1.1 200 OK\r\nContent-Length: 2147483650\r\n\r\n12"} << broken;
    QTest::newRow("length too small")
        << answer_t{"HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n{\"a\":1}"} << not_json;
    QTest::newRow("length not a number")
        << answer_t{"HTTP/1.1 200 OK\r\nContent-Length: much\r\n\r\n{\"a\":1}"} << broken;
    QTest::newRow("half of the chunks")
        << answer_t{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n12\r\n"} << broken;
    QTest::newRow("garbage status line") << answer_t{"\x01\x02 hello\r\n\r\n{}"} << broken;
    QTest::newRow("no head at all") << answer_t{"{\"a\":1}"} << broken;
    QTest::newRow("not JSON") << http_server_t::json("<html></html>") << not_json;
    QTest::newRow("half JSON") << http_server_t::json("{\"a\":") << not_json;
}

void tst_http_t::misbehaviour_is_an_error() {
    QFETCH(answer_t, answer);
    QFETCH(int, error);
    http_server_t server(answer);
    const http_t http(server.url(), false);
    for (const httpresponse_t& response : {http.get("a"), http.put("a", 1)}) {
        QCOMPARE(response.getError(), error);
        QVERIFY(!response.getErrorText().isEmpty());
        QVERIFY(response.getData().isUndefined());
    }
}

void tst_http_t::whole_exchange_ends_within_the_timeout_data() {
    QTest::addColumn<answer_t>("answer");
    const QByteArray bytes = http_server_t::json("\"" + QByteArray(1000, 'x') + "\"").bytes;
    QTest::newRow("silent") << http_server_t::silence();
    QTest::newRow("half an answer, then silent") << answer_t{bytes.left(100), false};
    QTest::newRow("a byte now and then") << answer_t{bytes, true, 20};
}

void tst_http_t::whole_exchange_ends_within_the_timeout() {
    QFETCH(answer_t, answer);
    http_server_t server(answer);
    http_t http(server.url(), false);
    http.set_timeout(300);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(http.get({}).getError(), int(httpresponse_t::timed_out));
    QCOMPARE(http.put("a", 1).getError(), int(httpresponse_t::timed_out));
    QVERIFY2(timer.elapsed() >= 590, "it gave up early");
    QVERIFY2(timer.elapsed() < 5000, "it did not give up in time");
}

void tst_http_t::answer_above_the_limit_is_refused() {
    const QByteArray large(http_t::max_answer_bytes, 'x');
    http_server_t with_length(http_server_t::json('"' + large + '"'));
    QCOMPARE(http_t(with_length.url(), false).get({}).getError(), int(httpresponse_t::too_large));
    http_server_t without(answer_t{"HTTP/1.1 200 OK\r\n\r\n\"" + large + '"'});
    QCOMPARE(http_t(without.url(), false).get({}).getError(), int(httpresponse_t::too_large));
    const QByteArray fits = '"' + large.chopped(2) + '"';
    http_server_t at_limit(http_server_t::json(fits));
    QCOMPARE(http_t(at_limit.url(), false).get({}).getError(), 0);
}

void tst_http_t::endless_head_is_refused() {
    const QByteArray line = "X-Pad: " + QByteArray(1000, 'x') + "\r\n";
    http_server_t server(answer_t{"HTTP/1.1 200 OK\r\n" + line.repeated(20000) + "\r\n{}", false});
    const int error = http_t(server.url(), false).get({}).getError();
    QVERIFY(error == httpresponse_t::too_large || error == httpresponse_t::broken_answer);
}

void tst_http_t::head_above_the_limit_is_refused() {
    http_server_t server(http_server_t::json("5"));
    http_exchange_t exchange{"GET", server.url().toUtf8(), {}, 5000, false, 200};
    QCOMPARE(exchange.run().error, 0);
    exchange.max_bytes = 20;
    QCOMPARE(exchange.run().error, int(httpresponse_t::too_large));
}

void tst_http_t::nobody_listening_is_an_error() {
    const QString url = QStringLiteral("http://127.0.0.1:%1/").arg(kit::free_port());
    const httpresponse_t response = http_t(url, false).get({});
    QCOMPARE(response.getError(), int(httpresponse_t::not_connected));
    QCOMPARE(response.getStatus(), 0);
    QVERIFY(response.getErrorText().contains(url));
}

void tst_http_t::unusable_address_is_an_error_data() {
    QTest::addColumn<QString>("base");
    QTest::newRow("empty") << "";
    QTest::newRow("no scheme") << "127.0.0.1/";
    QTest::newRow("no host") << "http:///";
    QTest::newRow("broken port") << "http://127.0.0.1:port/";
    QTest::newRow("a file") << "file:///etc/hostname?";
    QTest::newRow("a file of a host") << "file://localhost/etc/hostname?";
    QTest::newRow("another protocol") << "ftp://127.0.0.1/";
}

void tst_http_t::unusable_address_is_an_error() {
    QFETCH(QString, base);
    const http_t http(base, false);
    QVERIFY(http.get("a").getError() != 0);
    QVERIFY(http.put("a", 1).getError() != 0);
}

void tst_http_t::other_protocols_are_never_spoken() {
    QTcpServer probe;
    QVERIFY(probe.listen(QHostAddress::LocalHost));
    http_t http(QStringLiteral("ftp://127.0.0.1:%1/").arg(probe.serverPort()), false);
    http.set_timeout(500);
    QVERIFY(http.get("a").getError() != 0);
    QVERIFY(!probe.waitForNewConnection(50));
}

void tst_http_t::address_is_encoded_and_kept_as_given() {
    http_server_t server(http_server_t::json("{}"));
    const http_t http(server.url(), false);
    QCOMPARE(http.get(QStringLiteral("a b/\u00fc//c/../d\r\nX: y#e")).getError(), 0);
    QCOMPARE(server.requests().at(0).target, "/a%20b/%C3%BC//c/../d%0D%0AX:%20y");
}

void tst_http_t::redirect_is_not_followed() {
    http_server_t target(http_server_t::json("{}"));
    http_server_t server(answer_t{"HTTP/1.1 302 Found\r\nLocation: " + target.url().toUtf8() +
                                  "\r\nContent-Length: 2\r\n\r\n{}"});
    QCOMPARE(http_t(server.url(), false).get({}).getError(), 302);
    QVERIFY(target.requests().isEmpty());
}

void tst_http_t::proxy_of_the_environment_is_never_used_for_loopback() {
    http_server_t server(http_server_t::json("{}"));
    QCOMPARE(http_t(server.url(), false).get({}).getError(), 0);
    QCOMPARE(http_t(server.url(), true).get({}).getError(), 0);

    http_server_t proxy(http_server_t::json("\"through the proxy\""));
    const QByteArray before = qgetenv("http_proxy");
    qputenv("http_proxy", proxy.url().toUtf8());
    const auto restore = qScopeGuard([&]() { qputenv("http_proxy", before); });
    // Nobody listens there: only a proxy could answer.
    QCOMPARE(http_t("http://127.0.0.2:1/", true).get({}).getData(), "through the proxy");
    QVERIFY(http_t("http://127.0.0.2:1/", false).get({}).getError() != 0);
    QCOMPARE(proxy.requests().size(), 1);
}

void tst_http_t::call_runs_no_event_loop() {
    http_server_t server(http_server_t::json("{}"));
    bool entered = false;
    QTimer::singleShot(0, this, [&entered]() { entered = true; });
    QCOMPARE(http_t(server.url(), false).get({}).getError(), 0);
    QVERIFY(!entered);
    QTRY_VERIFY(entered);
}

void tst_http_t::calls_from_several_threads_do_not_meet() {
    http_server_t server([](const http_server_t::request_t& request) {
        return http_server_t::json('"' + request.target + '"');
    });
    const http_t http(server.url(), false);
    std::atomic<int> wrong = 0;
    const auto ask = [&](int thread) {
        for (int i = 0; i < 50; ++i) {
            const QString path = QStringLiteral("%1/%2").arg(thread).arg(i);
            wrong += http.get(path).getData() == QJsonValue('/' + path) ? 0 : 1;
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(ask, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QCOMPARE(wrong.load(), 0);
}

void tst_http_t::mapped_base_leads_to_the_other_port() {
    const QString base = QStringLiteral("http://127.0.0.1:1/");
    http_server_t first(http_server_t::json("\"first\""));
    http_server_t second(http_server_t::json("\"second\""));
    const http_t http(base, false);
    QVERIFY(http_t::map_base(base, first.port()));
    QCOMPARE(http.get("a/b").getData(), "first");
    QCOMPARE(first.requests().at(0).target, "/a/b");
    QCOMPARE(http_t("http://127.0.0.1:1/deeper/", false).get("c").getData(), "first");
    QVERIFY(http_t("http://127.0.0.1:2/", false).get("a").getError() != 0);
    QVERIFY(http_t::map_base(base, second.port()));
    QCOMPARE(http.put("a", 1).getData(), "second");
    QVERIFY(http_t::map_base(base, 0));
    QCOMPARE(http.get({}).getError(), int(httpresponse_t::not_connected));
}

void tst_http_t::only_loopback_may_be_mapped_data() {
    QTest::addColumn<QString>("base");
    QTest::addColumn<bool>("expected");
    QTest::newRow("IPv4") << "http://127.0.0.1:3/" << true;
    QTest::newRow("IPv6") << "http://[::1]:3/" << true;
    QTest::newRow("name") << "http://localhost:3/" << true;
    QTest::newRow("another machine") << "http://192.0.2.1:3/" << false;
    QTest::newRow("another name") << "http://localhost.example.org:3/" << false;
    QTest::newRow("another scheme") << "https://127.0.0.1:3/" << false;
    QTest::newRow("host as user") << "http://127.0.0.1@example.org:3/" << false;
    QTest::newRow("empty") << "" << false;
}

void tst_http_t::only_loopback_may_be_mapped() {
    QFETCH(QString, base);
    QFETCH(bool, expected);
    QCOMPARE(http_t::map_base(base, 4), expected);
    QCOMPARE(http_t::map_base(base, 0), expected);
}

void tst_http_t::error_text_holds_no_body_and_no_query() {
    http_server_t server(http_server_t::json("{}", "403 Forbidden"));
    QString base = server.url();
    base.replace("http://", "http://user:hidden1@");
    const QString text = http_t(base, false).put("a?token=hidden2", "hidden3").getErrorText();
    QVERIFY(text.contains("403"));
    QVERIFY(!text.contains("hidden"));
}

void tst_http_t::fresh_response_is_an_error() {
    QCOMPARE(httpresponse_t().getError(), int(httpresponse_t::not_sent));
    QVERIFY(httpresponse_t::failure(0, 0, "x").getError() != 0);
}

void tst_http_t::shipped_constants() {
    QCOMPARE(http_t::LIBHTTP_VERSION, "1.0.1");
    QCOMPARE(http_t::max_answer_bytes, 16777216);
    http_t http("http://127.0.0.1/", false, this);
    QCOMPARE(http.parent(), this);
    QCOMPARE(http.timeout(), 5000);
    http.set_timeout(0);
    QCOMPARE(http.timeout(), 1);
}

QTEST_GUILESS_MAIN(tst_http_t)
#include "tst_http_t.moc"
