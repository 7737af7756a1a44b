#include <QTest>

#include "logs/log_text.h"

using utility::logs::log_text;
using utility::logs::max_log_text;

class tst_log_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void only_control_characters_are_escaped_data() {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("written");
        QTest::newRow("plain") << "Kitchen: 21.5 \xc2\xb0"
                                  "C \\ 100%"
                               << "Kitchen: 21.5 \xc2\xb0"
                                  "C \\ 100%";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("line feed") << "a\nb"
                                   << "a\\nb";
        QTest::newRow("carriage return and tab") << "a\r\tb"
                                                 << "a\\r\\tb";
        QTest::newRow("escape sequence") << "\x1b[31m"
                                         << "\\u001b[31m";
        QTest::newRow("nul") << QString(QChar(0)) << "\\u0000";
        QTest::newRow("delete") << "\x7f"
                                << "\\u007f";
        QTest::newRow("next line") << QString(QChar(0x85)) << "\\u0085";
        QTest::newRow("line separator") << QString(QChar(0x2028)) << "\\u2028";
    }
    void only_control_characters_are_escaped() {
        QFETCH(QString, given);
        QFETCH(QString, written);
        QCOMPARE(QString::fromStdString(log_text(given)), written);
    }

    void a_huge_text_is_cut() {
        const QString huge(max_log_text + 1, QLatin1Char('x'));
        const QString written = QString::fromStdString(log_text(huge));
        QCOMPARE(written.size(), max_log_text + 1);
        QVERIFY(written.endsWith(QChar(0x2026)));
        QCOMPARE(QString::fromStdString(log_text(huge.first(max_log_text))).size(), max_log_text);
    }
};

QTEST_GUILESS_MAIN(tst_log_text)
#include "tst_log_text.moc"
