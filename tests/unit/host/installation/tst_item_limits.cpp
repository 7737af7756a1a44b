#include "installation/item_limits.h"

#include <QTest>
#include <limits>

using namespace database::installation;

Q_DECLARE_METATYPE(item_limits_t)

class tst_item_limits : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_value_is_taken_or_refused_data() {
        QTest::addColumn<item_limits_t>("limits");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("reason");
        const auto row = [](const item_limits_t& _limits, const char* _value,
                            const char* _reason = "") {
            QTest::addRow("%s %s", QByteArray(_value).toPercentEncoding().constData(), _reason)
                << _limits << QString(_value) << QString(_reason);
        };
        const item_limits_t read_only{.writable = false};
        row({}, "");
        row({}, "eco");
        row({}, "1e400");
        row(read_only, "1", "it is not writable");
        row(read_only, "", "it is not writable");
        row({false, 0, 1, 1}, "1", "it is not writable");

        const item_limits_t level{true, 0, 100, {}};
        for (const char* value : {"0", "-0", "50.5", "100", "1e2"}) {
            row(level, value);
        }
        row(level, "-0.1", "it is below 0");
        row(level, "101", "it is above 100");
        row(level, "1e300", "it is above 100");
        for (const char* value :
             {"", " 1", "1\n", "eco", "nan", "inf", "-inf", "1e400", "0x10", "1,000", "1 0", "١"}) {
            row(level, value, "it is no number");
        }
        row({true, 5, {}, {}}, "4.9", "it is below 5");
        row({true, 5, {}, {}}, "1e9");
        row({true, {}, 5, {}}, "-1e9");
        row({true, {}, 5, {}}, "5.1", "it is above 5");
        row({true, {}, 5, {}}, "eco", "it is no number");

        const item_limits_t lamp{true, 0, 1, 1};
        row(lamp, "0");
        row(lamp, "1");
        row(lamp, "1.0");
        row(lamp, "0.5", "it is no whole step of 1");
        row(lamp, "3.5", "it is above 1");
        row(lamp, "2", "it is above 1");
        const item_limits_t half_degrees{true, 5.25, 35, 0.5};
        row(half_degrees, "20.75");
        row(half_degrees, "20.5", "it is no whole step of 0.5");
        row({true, {}, {}, 0.1}, "0.3");
        row({true, {}, {}, 0.1}, "-12.7");
        row({true, {}, {}, 0.1}, "0.35", "it is no whole step of 0.1");
    }
    void a_value_is_taken_or_refused() {
        QFETCH(item_limits_t, limits);
        QFETCH(QString, value);
        QTEST(refusal(limits, value), "reason");
    }

    void limits_that_are_none_are_told_data() {
        QTest::addColumn<item_limits_t>("limits");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* _title, const item_limits_t& _limits,
                            const char* _error = "") {
            QTest::newRow(_title) << _limits << QString(_error);
        };
        constexpr double odd = std::numeric_limits<double>::quiet_NaN();
        constexpr double endless = std::numeric_limits<double>::infinity();
        row("none", {});
        row("all", {false, -1, 1, 0.5});
        row("range of one value", {true, 1, 1, {}});
        row("upside down", {true, 1, 0, {}}, "min must not be above max");
        row("odd min", {true, odd, 1, {}}, "min must be a number");
        row("endless min", {true, -endless, 1, {}}, "min must be a number");
        row("odd max", {true, {}, odd, {}}, "max must be a number");
        row("odd step", {true, {}, {}, odd}, "step must be a number above 0");
        row("no step", {true, {}, {}, 0}, "step must be a number above 0");
        row("step back", {true, {}, {}, -1}, "step must be a number above 0");
        row("endless step", {true, {}, {}, endless}, "step must be a number above 0");
    }
    void limits_that_are_none_are_told() {
        QFETCH(item_limits_t, limits);
        QTEST(limits_error(limits), "error");
    }
};

QTEST_GUILESS_MAIN(tst_item_limits)
#include "tst_item_limits.moc"
