#include <QTest>
#include <cmath>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

using fakes::recording_logger_t;
using utility::utility_t;

namespace {

recording_logger_t::line_t line(const char* _text, int _line) {
    return {QLatin1String(_text), 6, QStringLiteral("calculate_dew_point"),
            QStringLiteral("server/utility/utility_t"), _line};
}

}  // namespace

class tst_utility_t_climate : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_dew_point_is_rounded_to_the_decimals_asked_for_data() {
        QTest::addColumn<float>("temperature");
        QTest::addColumn<float>("humidity");
        QTest::addColumn<bool>("fahrenheit");
        QTest::addColumn<unsigned int>("precision");
        QTest::addColumn<float>("dew_point");

        QTest::newRow("20 C, 50 %") << 20.0F << 50.0F << false << 1U << 9.3F;
        QTest::newRow("68 F, 50 %") << 68.0F << 50.0F << true << 1U << 48.7F;
        QTest::newRow("25 C, 100 %") << 25.0F << 100.0F << false << 1U << 25.0F;
        QTest::newRow("single precision") << 25.0F << 100.0F << false << 6U << 24.999998F;
        QTest::newRow("whole degrees") << 20.0F << 50.0F << false << 0U << 9.0F;
        QTest::newRow("whole fahrenheit") << 68.0F << 50.0F << true << 0U << 49.0F;
        QTest::newRow("frost") << -10.0F << 80.0F << false << 2U << -12.78F;
        QTest::newRow("three decimals") << 20.0F << 50.0F << false << 3U << 9.254F;
    }

    void the_dew_point_is_rounded_to_the_decimals_asked_for() {
        QFETCH(const float, temperature);
        QFETCH(const float, humidity);
        QFETCH(const bool, fahrenheit);
        QFETCH(const unsigned int, precision);
        QFETCH(const float, dew_point);
        const float result =
            utility_t::calculate_dew_point(temperature, humidity, fahrenheit, precision);
        QVERIFY2(result == dew_point, qPrintable(QString::number(double(result), 'g', 9)));
    }

    void the_formula_is_computed_in_single_precision() {
        int differences = 0;
        for (int i = 100; i < 1000; ++i) {
            const float humidity = static_cast<float>(i) / 10.0F;
            const float gamma = 17.27F * 21.3F / (21.3F + 237.7F) + std::log(humidity / 100.0F);
            const float dew_point = 237.7F * gamma / (17.27F - gamma);
            QVERIFY(utility_t::calculate_dew_point(21.3F, humidity, false, 9) == dew_point);
            const double wide = 17.27 * 21.3 / (21.3 + 237.7) + std::log(double(humidity) / 100.0);
            differences += dew_point != float(237.7 * wide / (17.27 - wide)) ? 1 : 0;
        }
        QVERIFY(differences > 100);
    }

    void no_input_is_checked() {
        QVERIFY(std::isnan(utility_t::calculate_dew_point(20.0F, 0.0F, false, 1)));
        QVERIFY(std::isnan(utility_t::calculate_dew_point(20.0F, -1.0F, true, 1)));
        QVERIFY(utility_t::calculate_dew_point(20.0F, 200.0F, false, 1) > 20.0F);
    }

    void nothing_is_logged_as_an_error() {
        const recording_logger_t logger;
        utility_t::calculate_dew_point(20.0F, 0.0F, false, 1);
        utility_t::calculate_dew_point(-500.0F, -1.0F, false, 1);
        const QList<recording_logger_t::line_t> expected{
            line("Calculate dew point", 548), line("Dew point in celsius nan", 561),
            line("Calculate dew point", 548), line("Dew point in celsius nan", 561)};
        QCOMPARE(logger.lines(), expected);
    }

    void a_celsius_result_is_not_logged() {
        const recording_logger_t logger;
        utility_t::calculate_dew_point(20.0F, 50.0F, false, 1);
        const QList<recording_logger_t::line_t> expected{line("Calculate dew point", 548),
                                                         line("Dew point in celsius 9.25429", 561)};
        QCOMPARE(logger.lines(), expected);
    }

    void a_fahrenheit_run_is_logged_in_five_lines() {
        const recording_logger_t logger;
        utility_t::calculate_dew_point(68.5F, 50.0F, true, 1);
        const QList<recording_logger_t::line_t> expected{
            line("Calculate dew point", 548), line("Receve temperature in fahrenheit 68.5", 555),
            line("Trasform temperature in celsius 20.2778", 557),
            line("Dew point in celsius 9.50938", 561),
            line("Return dew point in fahrenheit 49.1", 564)};
        QCOMPARE(logger.lines(), expected);
    }

    void scales_convert_both_ways() {
        QCOMPARE(utility_t::fahrenheitToCelsius(212.0F), 100.0F);
        QCOMPARE(utility_t::fahrenheitToCelsius(32.0F), 0.0F);
        QCOMPARE(utility_t::celsiusToFahrenheit(-40.0F), -40.0F);
        QCOMPARE(utility_t::celsiusToFahrenheit(100.0F), 212.0F);
    }

    void scales_are_converted_in_double_precision() {
        // Single precision gives the neighbours of these.
        int differences = 0;
        for (int i = -400; i < 2000; ++i) {
            const float value = static_cast<float>(i) / 10.0F;
            const float celsius = utility_t::fahrenheitToCelsius(value);
            const float fahrenheit = utility_t::celsiusToFahrenheit(value);
            QVERIFY(celsius == static_cast<float>((double(value) - 32.0) * 0.5555555555555556));
            QVERIFY(fahrenheit == static_cast<float>(double(value) * 9.0 / 5.0 + 32.0));
            differences += celsius != (value - 32.0F) * 0.5555556F ? 1 : 0;
            differences += fahrenheit != value * 9.0F / 5.0F + 32.0F ? 1 : 0;
        }
        QVERIFY(differences > 100);
    }
};

QTEST_GUILESS_MAIN(tst_utility_t_climate)
#include "tst_utility_t_climate.moc"
