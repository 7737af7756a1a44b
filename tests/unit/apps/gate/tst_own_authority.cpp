#include "gate/own_authority.h"

#include <QTest>

using namespace torlan;

class tst_own_authority : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void authority_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("own");
        for (const char* own :
             {"localhost", "LOCALHOST:80", "127.0.0.1", "127.0.0.1:65535", "[::1]", "[::1]:80"}) {
            QTest::newRow(own) << QByteArray(own) << true;
        }
        for (const char* other :
             {"", ":80", "example.org", "127.0.0.1.example.org", "localhost:", "localhost:x",
              "localhost:123456", "::1", "[::2]", "[::1]x", "localhost:80:80", "user@localhost"}) {
            QTest::newRow(qPrintable(QStringLiteral("not %1").arg(QLatin1String(other))))
                << QByteArray(other) << false;
        }
    }
    void authority() {
        QFETCH(QByteArray, text);
        QTEST(is_own_authority(text), "own");
    }

    void origin() {
        QVERIFY(is_own_origin("http://127.0.0.1:4322"));
        QVERIFY(is_own_origin("https://localhost"));
        QVERIFY(!is_own_origin("null"));
        QVERIFY(!is_own_origin("ftp://localhost"));
        QVERIFY(!is_own_origin("http://example.org"));
    }
};

QTEST_GUILESS_MAIN(tst_own_authority)
#include "tst_own_authority.moc"
