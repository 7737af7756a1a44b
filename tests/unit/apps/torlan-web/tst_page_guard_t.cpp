#include "page_guard_t.h"

#include <QTest>

using namespace torlan;

class tst_page_guard_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void judged_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("headers");
        QTest::addColumn<int>("status");
        const QByteArray own = "Host: 127.0.0.1:4322\r\n";
        QTest::newRow("page") << QByteArray("GET /") << own << 0;
        QTest::newRow("head only") << QByteArray("HEAD /") << own << 0;
        QTest::newRow("localhost")
            << QByteArray("GET /") << QByteArray("Host: localhost:1\r\n") << 0;
        QTest::newRow("own origin")
            << QByteArray("GET /") << own + "Origin: http://127.0.0.1:4322\r\n"
            << 0;
        // A name of a stranger that resolves to this machine.
        QTest::newRow("other name")
            << QByteArray("GET /") << QByteArray("Host: evil.example\r\n") << 403;
        QTest::newRow("beginning alike")
            << QByteArray("GET /") << QByteArray("Host: 127.0.0.1.evil.example\r\n") << 403;
        QTest::newRow("no name") << QByteArray("GET /") << QByteArray() << 403;
        QTest::newRow("two names") << QByteArray("GET /") << own + "Host: evil.example\r\n" << 403;
        QTest::newRow("other site")
            << QByteArray("GET /") << own + "Origin: http://evil.example\r\n"
            << 403;
        QTest::newRow("writes") << QByteArray("PUT /") << own << 405;
        QTest::newRow("posts") << QByteArray("POST /") << own << 405;
        QTest::newRow("body") << QByteArray("GET /") << own + "Content-Length: 1\r\n" << 400;
        QTest::newRow("coded") << QByteArray("GET /") << own + "Transfer-Encoding: chunked\r\n"
                               << 400;
    }
    void judged() {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, headers);
        const auto head = request_head_t::parse(line + " HTTP/1.1\r\n" + headers);
        QVERIFY(head);
        QTEST(page_guard_t::judge(*head).status, "status");
    }
};

QTEST_GUILESS_MAIN(tst_page_guard_t)
#include "tst_page_guard_t.moc"
