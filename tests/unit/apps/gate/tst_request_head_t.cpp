#include "gate/request_head_t.h"

#include <QTest>

using namespace torlan;

class tst_request_head_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void head_is_read();
    void every_header_of_a_name_is_kept();
    void expectation_is_taken_out_data();
    void expectation_is_taken_out();
    void malformed_head_is_refused_data();
    void malformed_head_is_refused();
    void body_bytes_of_the_headers_data();
    void body_bytes_of_the_headers();
};

void tst_request_head_t::head_is_read() {
    const auto head = request_head_t::parse(
        "PUT /a/b?c=d?e HTTP/1.1\r\nHOST:127.0.0.1:4321\r\nOrigin:  http://x \r\n"
        "Content-Length: 12\r\nExpect: 100-Continue\r\nX-Other: a:b\r\n");
    QVERIFY(head);
    QCOMPARE(head->method, "PUT");
    QCOMPARE(head->target, "/a/b?c=d?e");
    QCOMPARE(head->path(), "/a/b");
    QCOMPARE(head->hosts, (QList<QByteArray>{"127.0.0.1:4321"}));
    QCOMPARE(head->origins, (QList<QByteArray>{"http://x"}));
    QCOMPARE(head->body_bytes(), 12);
    QVERIFY(head->expects_go_on);
    QVERIFY(!head->is_coded);
}

void tst_request_head_t::every_header_of_a_name_is_kept() {
    const auto head = request_head_t::parse(
        "GET / HTTP/1.0\r\nHost: a\r\nhost: b\r\nTransfer-Encoding: chunked\r\n");
    QVERIFY(head);
    QCOMPARE(head->hosts, (QList<QByteArray>{"a", "b"}));
    QVERIFY(head->is_coded);
    QCOMPARE(head->path(), "/");
}

void tst_request_head_t::expectation_is_taken_out_data() {
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("rest");
    const auto row = [](const char* name, const QByteArray& head, const QByteArray& rest) {
        QTest::newRow(name) << head << rest;
    };
    row("none", "GET / HTTP/1.1\r\nHost: a\r\n\r\n", "GET / HTTP/1.1\r\nHost: a\r\n\r\n");
    row("inside", "GET / HTTP/1.1\r\nExpect: 100-continue\r\nA: b\r\n\r\n",
        "GET / HTTP/1.1\r\nA: b\r\n\r\n");
    row("last", "GET / HTTP/1.1\r\nA: b\r\neXPECT:100-continue\r\n\r\n",
        "GET / HTTP/1.1\r\nA: b\r\n\r\n");
    row("twice", "GET / HTTP/1.1\nExpect: a\nExpect: b\n\r\n\r\n", "GET / HTTP/1.1\n\r\n\r\n");
    row("other names and values", "GET / HTTP/1.1\r\nA: expect:\r\nExpected: b\r\n",
        "GET / HTTP/1.1\r\nA: expect:\r\nExpected: b\r\n");
    row("in the request line", "expect:GET / HTTP/1.1\r\nA: b\r\n",
        "expect:GET / HTTP/1.1\r\nA: b\r\n");
    row("nothing", "", "");
}

void tst_request_head_t::expectation_is_taken_out() {
    QFETCH(QByteArray, head);
    QTEST(request_head_t::without_expectation(head), "rest");
}

void tst_request_head_t::malformed_head_is_refused_data() {
    QTest::addColumn<QByteArray>("head");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("line end only") << QByteArray("\r\n");
    QTest::newRow("no version") << QByteArray("GET /\r\n");
    QTest::newRow("other version") << QByteArray("GET / HTTP/2.0\r\n");
    QTest::newRow("other protocol") << QByteArray("GET / RTSP/1.0\r\n");
    QTest::newRow("no target") << QByteArray("GET  HTTP/1.1\r\n");
    QTest::newRow("blank in the target") << QByteArray("GET /a b HTTP/1.1\r\n");
    QTest::newRow("no method") << QByteArray(" / HTTP/1.1\r\n");
    QTest::newRow("no line end") << QByteArray("GET / HTTP/1.1");
    QTest::newRow("header without a colon") << QByteArray("GET / HTTP/1.1\r\nHost\r\n");
    QTest::newRow("header without a name") << QByteArray("GET / HTTP/1.1\r\n: a\r\n");
    QTest::newRow("blank before the colon") << QByteArray("GET / HTTP/1.1\r\nHost : a\r\n");
    QTest::newRow("continued line") << QByteArray("GET / HTTP/1.1\r\nA: b\r\n Host: c\r\n");
    QTest::newRow("lone carriage return") << QByteArray("GET / HTTP/1.1\r\nA: b\rHost: c\r\n");
    QTest::newRow("zero byte") << QByteArray("GET / HTTP/1.1\r\nA: b\0c\r\n", 24);
    QTest::newRow("empty line inside") << QByteArray("GET / HTTP/1.1\r\n\nHost: c\r\n");
}

void tst_request_head_t::malformed_head_is_refused() {
    QFETCH(QByteArray, head);
    QVERIFY(!request_head_t::parse(head));
}

void tst_request_head_t::body_bytes_of_the_headers_data() {
    QTest::addColumn<QList<QByteArray>>("lengths");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("none") << QList<QByteArray>{} << qint64(0);
    QTest::newRow("zero") << QList<QByteArray>{"0"} << qint64(0);
    QTest::newRow("large") << QList<QByteArray>{"123456789012345"} << qint64(123456789012345);
    QTest::newRow("above 31 bits") << QList<QByteArray>{"2147483648"} << qint64(2147483648);
    QTest::newRow("above 32 bits") << QList<QByteArray>{"4294967297"} << qint64(4294967297);
    QTest::newRow("larger than any number")
        << QList<QByteArray>{"9999999999999999999"} << qint64(-1);
    QTest::newRow("negative") << QList<QByteArray>{"-1"} << qint64(-1);
    QTest::newRow("signed") << QList<QByteArray>{"+1"} << qint64(-1);
    QTest::newRow("hexadecimal") << QList<QByteArray>{"0x10"} << qint64(-1);
    QTest::newRow("empty") << QList<QByteArray>{""} << qint64(-1);
    QTest::newRow("list") << QList<QByteArray>{"1, 1"} << qint64(-1);
    QTest::newRow("twice") << QList<QByteArray>{"1", "1"} << qint64(-1);
}

void tst_request_head_t::body_bytes_of_the_headers() {
    QFETCH(QList<QByteArray>, lengths);
    QFETCH(qint64, expected);
    request_head_t head;
    head.lengths = lengths;
    QCOMPARE(head.body_bytes().value_or(-1), expected);
}

QTEST_GUILESS_MAIN(tst_request_head_t)
#include "tst_request_head_t.moc"
