#include "installation/item_limits.h"

#include <cmath>

namespace database::installation {

namespace {

/// How far from a whole step a value may be, in steps: 0.3 is three times 0.1.
constexpr double step_tolerance = 1e-6;

bool is_number(const std::optional<double>& _limit) {
    return !_limit || std::isfinite(*_limit);
}

/// A text with blanks around it is none.
std::optional<double> number(const QString& _value) {
    bool is_read = false;
    const double read = _value.toDouble(&is_read);
    return is_read && std::isfinite(read) && _value.trimmed().size() == _value.size()
               ? std::optional(read)
               : std::nullopt;
}

bool is_whole_step(const item_limits_t& _limits, double _value) {
    const double steps = (_value - _limits.min.value_or(0)) / _limits.step.value_or(1);
    return std::abs(steps - std::round(steps)) <= step_tolerance;
}

}  // namespace

QString limits_error(const item_limits_t& _limits) {
    if (!is_number(_limits.min)) {
        return QStringLiteral("min must be a number");
    }
    if (!is_number(_limits.max)) {
        return QStringLiteral("max must be a number");
    }
    if (_limits.step && !(std::isfinite(*_limits.step) && *_limits.step > 0)) {
        return QStringLiteral("step must be a number above 0");
    }
    return _limits.min && _limits.max && *_limits.min > *_limits.max
               ? QStringLiteral("min must not be above max")
               : QString();
}

QString refusal(const item_limits_t& _limits, const QString& _value) {
    if (!_limits.writable) {
        return QStringLiteral("it is not writable");
    }
    if (!_limits.min && !_limits.max && !_limits.step) {
        return {};
    }
    const std::optional<double> asked = number(_value);
    if (!asked) {
        return QStringLiteral("it is no number");
    }
    if (_limits.min && *asked < *_limits.min) {
        return QStringLiteral("it is below %1").arg(*_limits.min);
    }
    if (_limits.max && *asked > *_limits.max) {
        return QStringLiteral("it is above %1").arg(*_limits.max);
    }
    return _limits.step && !is_whole_step(_limits, *asked)
               ? QStringLiteral("it is no whole step of %1").arg(*_limits.step)
               : QString();
}

}  // namespace database::installation
