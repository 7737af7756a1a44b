#pragma once

#include <optional>

#include "base/result_t.h"
#include "line/call_t.h"

/// What the values of options say; each leaves its target as it is where the option is not given.
namespace torlan {

base::result_t take_text(const call_t& _call, const char* _option, QString* _target);
base::result_t take_whole(const call_t& _call, const char* _option, int* _target);
/// A number, or "none".
base::result_t take_limit(const call_t& _call, const char* _option, std::optional<double>* _target);
/// "yes" or "no".
base::result_t take_flag(const call_t& _call, const char* _option, bool* _target);

}  // namespace torlan
