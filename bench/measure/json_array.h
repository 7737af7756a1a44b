#pragma once

#include <QJsonArray>
#include <cmath>
#include <vector>

namespace bench {

/// Rounded to what a reader of results can tell apart: three places.
inline double rounded(double _value) {
    return std::round(_value * 1000) / 1000;
}

inline QJsonArray json_array(const std::vector<double>& _values) {
    QJsonArray array;
    for (const double value : _values) {
        array.append(rounded(value));
    }
    return array;
}

inline std::vector<double> numbers_of(const QJsonArray& _array) {
    std::vector<double> values;
    for (const auto& value : _array) {
        values.push_back(value.toDouble());
    }
    return values;
}

}  // namespace bench
