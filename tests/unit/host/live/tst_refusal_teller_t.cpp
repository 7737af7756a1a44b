#include "live/refusal_teller_t.h"

#include <QTest>

using database::live::refusal_teller_t;

class tst_refusal_teller_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { make(std::chrono::hours(1)); }

    void a_refusal_is_told_in_one_line() {
        teller->take("i-lamp", "3\n5" + QString(1000, 'x'), "it is no number");
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines[0].startsWith("Item i-lamp does not take \"3"), qPrintable(lines[0]));
        QVERIFY2(lines[0].endsWith(" from a client: it is no number."), qPrintable(lines[0]));
        QVERIFY(!lines[0].contains('\n'));
        QVERIFY2(lines[0].size() < 200, qPrintable(lines[0]));
    }

    void a_flood_is_a_bounded_number_of_lines() {
        for (int round = 0; round < 100; ++round) {
            for (int item = 0; item < 1000; ++item) {
                teller->take(QString::number(item), "2", "it is above 1");
            }
        }
        QCOMPARE(lines.size(), refusal_teller_t::singly);
        teller.reset();
        QCOMPARE(lines.size(), refusal_teller_t::singly + 1);
        QCOMPARE(lines.last(), QStringLiteral("%1 more values from clients were not taken.")
                                   .arg(100 * 1000 - refusal_teller_t::singly));
    }

    void a_period_ends_and_everything_is_told_again() {
        make(std::chrono::milliseconds(1));
        teller->take("i-lamp", "2", "it is above 1");
        teller->take("i-lamp", "3", "it is above 1");
        QTRY_COMPARE(lines.size(), 2);
        QCOMPARE(lines[1], "1 more values from clients were not taken.");
        teller->take("i-lamp", "2", "it is above 1");
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[2], lines[0]);
    }

    void the_usual_period_is_a_minute() {
        QCOMPARE(refusal_teller_t::usual_period, std::chrono::minutes(1));
    }

 private:
    void make(std::chrono::milliseconds _period) {
        teller.reset();
        lines.clear();
        teller = std::make_unique<refusal_teller_t>(_period);
        connect(teller.get(), &refusal_teller_t::told, this,
                [this](const QString& _sentence) { lines += _sentence; });
    }

    QStringList lines;
    std::unique_ptr<refusal_teller_t> teller;
};

QTEST_GUILESS_MAIN(tst_refusal_teller_t)
#include "tst_refusal_teller_t.moc"
