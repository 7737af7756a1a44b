#include "option_values.h"

#include <cmath>

#include "database/name_rules.h"

namespace torlan {

using base::result_t;

namespace {

result_t refused(const call_t& _call, const char* _option, const char* _takes) {
    return result_t::failed(
        QStringLiteral("--%1 takes %2, not %3.")
            .arg(QLatin1String(_option), QLatin1String(_takes), database::quoted(_call[_option])));
}

}  // namespace

result_t take_text(const call_t& _call, const char* _option, QString* _target) {
    if (_call.has(_option)) {
        *_target = _call[_option];
    }
    return {};
}

result_t take_whole(const call_t& _call, const char* _option, int* _target) {
    if (!_call.has(_option)) {
        return {};
    }
    bool is_number = false;
    const int number = _call[_option].toInt(&is_number);
    *_target = is_number ? number : *_target;
    return is_number ? result_t() : refused(_call, _option, "a whole number");
}

result_t take_limit(const call_t& _call, const char* _option, std::optional<double>* _target) {
    if (!_call.has(_option)) {
        return {};
    }
    if (_call[_option] == QLatin1String("none")) {
        _target->reset();
        return {};
    }
    bool is_number = false;
    const double number = _call[_option].toDouble(&is_number);
    if (!is_number || !std::isfinite(number)) {
        return refused(_call, _option, "a number or none");
    }
    *_target = number;
    return {};
}

result_t take_flag(const call_t& _call, const char* _option, bool* _target) {
    const QString word = _call[_option];
    if (!_call.has(_option)) {
        return {};
    }
    if (word != QLatin1String("yes") && word != QLatin1String("no")) {
        return refused(_call, _option, "yes or no");
    }
    *_target = word == QLatin1String("yes");
    return {};
}

}  // namespace torlan
