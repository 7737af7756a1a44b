#include "request_guard_t.h"

#include <QTest>

using namespace torlan;

namespace {

request_head_t good_head() {
    request_head_t head;
    head.method = "PUT";
    head.target = "/a/b?runtriggers=true";
    head.hosts = {"127.0.0.1:4321"};
    head.lengths = {"10"};
    return head;
}

}  // namespace

class tst_request_guard_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void host_names_this_machine_data();
    void host_names_this_machine();
    void exactly_one_host_is_needed();
    void origin_is_of_this_machine_data();
    void origin_is_of_this_machine();
    void method_is_get_or_put_data();
    void method_is_get_or_put();
    void path_rules_apply_to_every_method();
    void body_is_announced_and_bounded_data();
    void body_is_announced_and_bounded();
    void source_is_judged_before_everything_else();
};

void tst_request_guard_t::host_names_this_machine_data() {
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<int>("status");
    for (const char* own : {"127.0.0.1", "127.0.0.1:4321", "127.0.0.1:1", "localhost",
                            "LocalHost:65535", "[::1]", "[::1]:4321"}) {
        QTest::newRow(own) << QByteArray(own) << 0;
    }
    for (const char* foreign : {"",
                                "example.org",
                                "example.org:4321",
                                "192.0.2.1:4321",
                                "0.0.0.0:4321",
                                "127.0.0.2",
                                "localhost.example.org",
                                "127.0.0.1.example.org",
                                "evil-localhost",
                                "localhost.",
                                "127.0.0.1:",
                                "127.0.0.1:a",
                                "127.0.0.1:4321x",
                                "127.0.0.1:123456",
                                "127.0.0.1:43:21",
                                "127.0.0.1@example.org",
                                "127.0.0.1:4321@example.org",
                                "example.org,127.0.0.1",
                                "127.0.0.1 example.org",
                                "::1",
                                "[::1",
                                "[::1]x",
                                "[::1]4321",
                                "[::2]",
                                "[localhost]",
                                "[127.0.0.1]",
                                "[]",
                                "[",
                                "]",
                                ":4321"}) {
        QTest::newRow(*foreign == '\0' ? "empty" : foreign) << QByteArray(foreign) << 403;
    }
}

void tst_request_guard_t::host_names_this_machine() {
    QFETCH(QByteArray, host);
    QFETCH(int, status);
    request_head_t head = good_head();
    head.hosts = {host};
    QCOMPARE(request_guard_t::judge(head).status, status);
}

void tst_request_guard_t::exactly_one_host_is_needed() {
    request_head_t head = good_head();
    head.hosts = {};
    QCOMPARE(request_guard_t::judge(head).status, 403);
    head.hosts = {"127.0.0.1", "127.0.0.1"};
    QCOMPARE(request_guard_t::judge(head).status, 403);
}

void tst_request_guard_t::origin_is_of_this_machine_data() {
    QTest::addColumn<QList<QByteArray>>("origins");
    QTest::addColumn<int>("status");
    QTest::newRow("none") << QList<QByteArray>{} << 0;
    for (const char* own : {"http://127.0.0.1:4321", "http://localhost:8080", "https://localhost",
                            "http://[::1]:80"}) {
        QTest::newRow(own) << QList<QByteArray>{own} << 0;
    }
    for (const char* foreign :
         {"", "null", "http://example.org", "https://localhost.example.org", "localhost",
          "file://localhost", "http://", "http://127.0.0.1:4321/", "HTTP://localhost",
          "http://localhost http://example.org"}) {
        QTest::newRow(*foreign == '\0' ? "empty" : foreign) << QList<QByteArray>{foreign} << 403;
    }
    QTest::newRow("one of two") << QList<QByteArray>{"http://localhost", "http://a.example"} << 403;
}

void tst_request_guard_t::origin_is_of_this_machine() {
    QFETCH(QList<QByteArray>, origins);
    QFETCH(int, status);
    request_head_t head = good_head();
    head.origins = origins;
    QCOMPARE(request_guard_t::judge(head).status, status);
    head.method = "GET";
    QCOMPARE(request_guard_t::judge(head).status, status);
}

void tst_request_guard_t::method_is_get_or_put_data() {
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<int>("status");
    QTest::newRow("GET") << QByteArray("GET") << 0;
    QTest::newRow("PUT") << QByteArray("PUT") << 0;
    for (const char* other :
         {"POST", "DELETE", "PATCH", "HEAD", "OPTIONS", "TRACE", "CONNECT", "get", "put", "BREW"}) {
        QTest::newRow(other) << QByteArray(other) << 405;
    }
}

void tst_request_guard_t::method_is_get_or_put() {
    QFETCH(QByteArray, method);
    QFETCH(int, status);
    request_head_t head = good_head();
    head.method = method;
    QCOMPARE(request_guard_t::judge(head).status, status);
}

void tst_request_guard_t::path_rules_apply_to_every_method() {
    request_head_t head = good_head();
    for (const char* method : {"GET", "PUT"}) {
        head.method = method;
        head.target = "/a/../b?x";
        QCOMPARE(request_guard_t::judge(head).status, 400);
        head.target = '/' + QByteArray(5000, 'a');
        QCOMPARE(request_guard_t::judge(head).status, 414);
        head.target = "http://127.0.0.1:4321/a";
        QCOMPARE(request_guard_t::judge(head).status, 400);
    }
}

void tst_request_guard_t::body_is_announced_and_bounded_data() {
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QList<QByteArray>>("lengths");
    QTest::addColumn<bool>("is_coded");
    QTest::addColumn<int>("status");
    const QByteArray get = "GET";
    const QByteArray put = "PUT";
    QTest::newRow("GET without") << get << QList<QByteArray>{} << false << 0;
    QTest::newRow("GET, bounded too") << get << QList<QByteArray>{"1048577"} << false << 413;
    QTest::newRow("PUT without") << put << QList<QByteArray>{} << false << 411;
    QTest::newRow("PUT in chunks") << put << QList<QByteArray>{} << true << 411;
    QTest::newRow("PUT in chunks with a length") << put << QList<QByteArray>{"1"} << true << 411;
    QTest::newRow("GET in chunks") << get << QList<QByteArray>{} << true << 411;
    QTest::newRow("not a number") << put << QList<QByteArray>{"x"} << false << 400;
    QTest::newRow("two lengths") << put << QList<QByteArray>{"1", "2"} << false << 400;
    QTest::newRow("empty") << put << QList<QByteArray>{"0"} << false << 0;
    QTest::newRow("1 MiB") << put << QList<QByteArray>{"1048576"} << false << 0;
    QTest::newRow("1 MiB and a byte") << put << QList<QByteArray>{"1048577"} << false << 413;
    QTest::newRow("2 GiB") << put << QList<QByteArray>{"2147483648"} << false << 413;
    QTest::newRow("4 GiB and a byte") << put << QList<QByteArray>{"4294967297"} << false << 413;
}

void tst_request_guard_t::body_is_announced_and_bounded() {
    QFETCH(QByteArray, method);
    QFETCH(QList<QByteArray>, lengths);
    QFETCH(bool, is_coded);
    QFETCH(int, status);
    request_head_t head = good_head();
    head.method = method;
    head.lengths = lengths;
    head.is_coded = is_coded;
    QCOMPARE(request_guard_t::judge(head).status, status);
}

// Another site learns nothing from the answer, not even which paths are well-formed.
void tst_request_guard_t::source_is_judged_before_everything_else() {
    request_head_t head = good_head();
    head.hosts = {"example.org"};
    head.method = "DELETE";
    head.target = "/..";
    head.lengths = {"x"};
    QCOMPARE(request_guard_t::judge(head).status, 403);
}

QTEST_GUILESS_MAIN(tst_request_guard_t)
#include "tst_request_guard_t.moc"
