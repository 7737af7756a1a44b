#pragma once

#include "line/call_t.h"
#include "line/option_t.h"
#include "program/password_input.h"

namespace torlan {

inline constexpr option_t password_file_option{
    "password-file", "FILE", "the password is its first line; a file of the owner's alone"};

/// The password that a call comes with: from the file that it names, which others must not be able
/// to read, or from standard input. Command lines are public on the machine.
base::result_of_t<QString> given_password(const call_t& _call, password_rule_t _rule);

}  // namespace torlan
