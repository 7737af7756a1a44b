#include <QTest>

#include "request_limit.h"

using comunication::request_limits_t;
using torlan::set_request_limit;

class tst_request_limit : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_name_sets_its_limit() {
        request_limits_t limits;
        for (const char* text :
             {"request-bytes=256", "filter-entries=2", "value-bytes=3", "waiting-requests=4",
              "waiting-bytes=257", "waiting-bytes-of-all=258", "requests-per-second=7",
              "refused-bytes-per-second=8", "at-once=9", "publishes-per-second=10",
              "publish-bytes-per-second=11"}) {
            QCOMPARE(set_request_limit(text, &limits).error, QString());
        }
        QCOMPARE(limits.request_bytes, std::size_t(256));
        QCOMPARE(limits.filter_entries, std::size_t(2));
        QCOMPARE(limits.value_bytes, std::size_t(3));
        QCOMPARE(limits.waiting_requests, std::size_t(4));
        QCOMPARE(limits.waiting_bytes, std::size_t(257));
        QCOMPARE(limits.waiting_bytes_of_all, std::size_t(258));
        QCOMPARE(limits.requests_per_second, 7.0);
        QCOMPARE(limits.refused_bytes_per_second, 8.0);
        QCOMPARE(limits.at_once, 9);
        QCOMPARE(limits.publishes_per_second, 10);
        QCOMPARE(limits.publish_bytes_per_second, 11);
    }

    void what_makes_no_sense_is_one_sentence_that_names_it_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("named");
        QTest::newRow("unknown") << "speed=3"
                                 << "\"speed\"; there are: request-bytes=1048576,";
        QTest::newRow("nothing") << ""
                                 << "\"\"";
        QTest::newRow("no number") << "at-once=x"
                                   << "from 1 to 1000, not \"x\"";
        QTest::newRow("no value") << "at-once"
                                  << "not \"\"";
        QTest::newRow("too low") << "at-once=0"
                                 << "not \"0\"";
        QTest::newRow("too high") << "at-once=1001"
                                  << "not \"1001\"";
    }
    void what_makes_no_sense_is_one_sentence_that_names_it() {
        QFETCH(QString, text);
        QFETCH(QString, named);
        request_limits_t limits;
        const QString error = set_request_limit(text, &limits).error;
        QVERIFY2(error.contains(named), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(tst_request_limit)
#include "tst_request_limit.moc"
