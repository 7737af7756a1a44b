#include "page_headers.h"

#include <QTest>

class tst_page_headers : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_but_the_page_and_the_broker_is_reached() {
        const QByteArray headers = torlan::page_headers(9001);
        QVERIFY(headers.contains("default-src 'none'; script-src 'self'; style-src 'self'"));
        QVERIFY(headers.contains("connect-src 'self' ws://127.0.0.1:9001 ws://localhost:9001;"));
        QVERIFY(headers.contains("frame-ancestors 'none'"));
        QVERIFY(!headers.contains("unsafe"));
        QVERIFY(!headers.contains('*'));
    }

    void each_is_a_whole_line() {
        const QByteArray headers = torlan::page_headers(1);
        QVERIFY(headers.endsWith("\r\n"));
        for (const QByteArray& line : headers.chopped(2).replace("\r\n", "\n").split('\n')) {
            QVERIFY2(line.contains(": ") && !line.contains('\r'), line);
        }
        QVERIFY(headers.contains("X-Content-Type-Options: nosniff\r\n"));
    }
};

QTEST_GUILESS_MAIN(tst_page_headers)
#include "tst_page_headers.moc"
