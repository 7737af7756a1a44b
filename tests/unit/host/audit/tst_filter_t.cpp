#include "audit/filter_t.h"

#include <QTest>

using audit::entry_t;
using audit::filter_t;

class tst_filter_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void matches_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("element");
        QTest::addColumn<qint64>("since");
        QTest::addColumn<bool>("matches");
        QTest::newRow("nothing asked") << ""
                                       << "" << qint64(0) << true;
        QTest::newRow("the user") << "alice"
                                  << "" << qint64(0) << true;
        QTest::newRow("another user") << "bob"
                                      << "" << qint64(0) << false;
        QTest::newRow("a part of the name") << "ali"
                                            << "" << qint64(0) << false;
        QTest::newRow("the element") << ""
                                     << "e-lamp" << qint64(0) << true;
        QTest::newRow("another element") << ""
                                         << "e-lam" << qint64(0) << false;
        QTest::newRow("both") << "alice"
                              << "e-lamp" << qint64(0) << true;
        QTest::newRow("one of both") << "bob"
                                     << "e-lamp" << qint64(0) << false;
        QTest::newRow("at that time") << ""
                                      << "" << qint64(1'000) << true;
        QTest::newRow("before it") << ""
                                   << "" << qint64(1'001) << false;
    }
    void matches() {
        QFETCH(QString, user);
        QFETCH(QString, element);
        QFETCH(qint64, since);
        entry_t entry;
        entry.time = 1'000;
        entry.since = 1;
        entry.user = "alice";
        entry.element = "e-lamp";
        const filter_t filter{user, element, since};
        QTEST(filter.matches(entry), "matches");
    }

    void since_data() {
        constexpr qint64 now = 1'795'327'842'123;  // 2026-11-22T06:10:42.123Z
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("time");
        const auto row = [](const char* _text, qint64 _time) {
            QTest::newRow(qPrintable(QString("'%1'").arg(_text))) << QString(_text) << _time;
        };
        row("90s", now - 90'000);
        row("10m", now - 600'000);
        row("2h", now - 7'200'000);
        row("3d", now - 259'200'000);
        row("0m", now);
        row("2026-11-22T06:10:42.123Z", now);
        row("2026-11-22T06:10:42Z", now - 123);
        row("2026-11-22T06:10:42", now - 123);
        row("2026-11-22T07:10:42+01:00", now - 123);
        row("2026-11-22", now - 22'242'123);
        for (const char* none : {"", "m", "10", "10w", "-1h", "+1h", " 1h", "1.5h", "yesterday",
                                 "99999999999d", "2026-13-01", "2026-11-22T25:00:00Z"}) {
            row(none, -1);
        }
    }
    void since() {
        QFETCH(QString, text);
        QFETCH(qint64, time);
        QCOMPARE(audit::since_of(text, 1'795'327'842'123).value_or(-1), time);
    }
};

QTEST_GUILESS_MAIN(tst_filter_t)
#include "tst_filter_t.moc"
