#pragma once

namespace torlan {

/// What a command can be given besides its arguments, in any place.
struct option_t {
    const char* name;   ///< without its dashes; means the same to every command that has it
    const char* value;  ///< what follows, such as "DIR"; empty: nothing does
    const char* help;   ///< one line
};

// Those of many commands.
inline constexpr option_t json_option{"json", "", "print JSON, a line for each thing"};
inline constexpr option_t yes_option{"yes", "", "do not ask, also on a terminal"};

}  // namespace torlan
