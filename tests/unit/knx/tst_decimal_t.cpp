#include <QTest>
#include <limits>

#include "knx/decimal_t.h"

using knx::decimal_t;

class tst_decimal_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void number_is_read_exactly_data();
    void number_is_read_exactly();
    void what_is_no_number_is_refused_data();
    void what_is_no_number_is_refused();
    void numbers_are_compared_data();
    void numbers_are_compared();
    void halves_are_rounded_away_from_zero_data();
    void halves_are_rounded_away_from_zero();
    void product_is_exact();
};

void tst_decimal_t::number_is_read_exactly_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("whole");
    const auto row = [](const char* _written, const char* _text, bool _whole) {
        QTest::newRow(_written) << QString::fromLatin1(_text) << _whole;
    };
    row("0", "0", true);
    row("-0", "0", true);
    row("0.000", "0", true);
    row("007", "7", true);
    row("+7", "7", true);
    row("21.50", "21.5", false);
    row("-0.01", "-0.01", false);
    row("1.23457e+06", "1234570", true);
    row("1e-3", "0.001", false);
    row("2.5E1", "25", true);
    row("100", "100", true);
    row("9223372036854775807", "9223372036854775807", true);
}

void tst_decimal_t::number_is_read_exactly() {
    const auto number = decimal_t::from_text(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(number);
    QTEST(number->text(), "text");
    QTEST(number->is_whole(), "whole");
}

void tst_decimal_t::what_is_no_number_is_refused_data() {
    QTest::addColumn<QString>("text");
    for (const char* text : {"", "-", ".", "1.", ".5", "1e", "1e1000", "1e401", "0x10", "1,5", " 1",
                             "1 ", "1\n", "--1", "nan", "inf", "1_000", "1e+-1"}) {
        QTest::newRow(text) << QString::fromLatin1(text);
    }
    QTest::newRow("other digits") << QStringLiteral("\u0661");
    QTest::newRow("endless") << QString(65, QLatin1Char('1'));
}

void tst_decimal_t::what_is_no_number_is_refused() {
    QFETCH(QString, text);
    QVERIFY(!decimal_t::from_text(text));
}

void tst_decimal_t::numbers_are_compared_data() {
    QTest::addColumn<QString>("less");
    QTest::addColumn<QString>("more");
    const auto row = [](const char* _less, const char* _more) {
        QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(_less, _more)))
            << QString::fromLatin1(_less) << QString::fromLatin1(_more);
    };
    row("-1", "0");
    row("0", "0.001");
    row("-2", "-1");
    row("-273.01", "-273");
    row("99", "100");
    row("0.09", "0.1");
    row("1e2", "100.5");
    row("4294967295", "4294967295.1");
}

void tst_decimal_t::numbers_are_compared() {
    QFETCH(QString, less);
    QFETCH(QString, more);
    const auto one = decimal_t::from_text(less);
    const auto other = decimal_t::from_text(more);
    QVERIFY(decimal_t::compare(*one, *other) < 0);
    QVERIFY(decimal_t::compare(*other, *one) > 0);
    QCOMPARE(decimal_t::compare(*one, *one), 0);
}

void tst_decimal_t::halves_are_rounded_away_from_zero_data() {
    QTest::addColumn<int>("power");
    QTest::addColumn<std::optional<qint64>>("rounded");
    using rounded_t = std::optional<qint64>;
    constexpr auto highest = std::numeric_limits<qint64>::max();
    constexpr auto lowest = std::numeric_limits<qint64>::min();
    const auto row = [](const char* _text, int _power, rounded_t _rounded) {
        QTest::newRow(_text) << _power << _rounded;
    };
    row("127.5", 0, 128);
    row("-127.5", 0, -128);
    row("127.49999999999999999999999", 0, 127);
    row("21.5", 2, 2150);
    row("15", -1, 2);
    row("4", -1, 0);
    row("6", -1, 1);
    row("0.04", 0, 0);
    row("1e-300", 0, 0);
    row("9223372036854775807", 0, highest);
    row("-9223372036854775808", 0, lowest);
    row("9223372036854775808", 0, {});
    row("-9223372036854775809", 0, {});
    row("9223372036854775807.5", 0, {});
    row("18446744073709551615.9", 0, {});
    row("1e30", 0, {});
}

void tst_decimal_t::halves_are_rounded_away_from_zero() {
    QFETCH(int, power);
    const auto number = decimal_t::from_text(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(number);
    QTEST(number->rounded(power), "rounded");
}

void tst_decimal_t::product_is_exact() {
    const auto text = [](const char* _number, int _factor) {
        return decimal_t::from_text(QString::fromLatin1(_number))->times(_factor).text();
    };
    QCOMPARE(text("50", 255), "12750");
    QCOMPARE(text("-0.1", 255), "-25.5");
    QCOMPARE(text("0", 255), "0");
    QCOMPARE(text("99999999999999999999", 255), "25499999999999999999745");
    QCOMPARE(text("0.40", 250), "100");
}

QTEST_GUILESS_MAIN(tst_decimal_t)
#include "tst_decimal_t.moc"
