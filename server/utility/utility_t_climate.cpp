// Dew point and temperature scales. Which steps are single and which double precision is part of
// the published values.
#include <cmath>

#include "utility/utility_t.h"
#include "utility/utility_t_log.h"

namespace utility {

namespace {

const char* const function = "calculate_dew_point";

float dew_point_celsius(float _celsius, float _humidity) {
    constexpr float a = 17.27F;
    constexpr float b = 237.7F;
    const float gamma = a * _celsius / (_celsius + b) + std::log(_humidity / 100.0F);
    return b * gamma / (a - gamma);
}

/// Through the text, so that the value published is the value shown.
float rounded(float _value, unsigned int _precision) {
    return QString::number(static_cast<double>(_value), 'f', static_cast<int>(_precision))
        .toFloat();
}

}  // namespace

float utility_t::calculate_dew_point(const float& temperature, const float& humidity,
                                     const bool& fahrenheit, const unsigned int& precision) {
    log_utility(QStringLiteral("Calculate dew point"), 6, function, 548);
    float celsius = temperature;
    if (fahrenheit) {
        // Readers of the log know these spellings.
        log_utility(QStringLiteral("Receve temperature in fahrenheit %1").arg(celsius), 6, function,
                    555);
        celsius = fahrenheitToCelsius(celsius);
        log_utility(QStringLiteral("Trasform temperature in celsius %1").arg(celsius), 6, function,
                    557);
    }
    const float dew_point = dew_point_celsius(celsius, humidity);
    log_utility(QStringLiteral("Dew point in celsius %1").arg(dew_point), 6, function, 561);
    if (!fahrenheit) {
        return rounded(dew_point, precision);
    }
    const float result = rounded(celsiusToFahrenheit(dew_point), precision);
    log_utility(QStringLiteral("Return dew point in fahrenheit %1").arg(result), 6, function, 564);
    return result;
}

float utility_t::fahrenheitToCelsius(const float& value) {
    return static_cast<float>((static_cast<double>(value) - 32.0) * 0.5555555555555556);
}

float utility_t::celsiusToFahrenheit(const float& value) {
    return static_cast<float>(static_cast<double>(value) * 9.0 / 5.0 + 32.0);
}

}  // namespace utility
