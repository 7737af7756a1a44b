#pragma once

#include <QStringList>

#include "base/result_t.h"
#include "line/command_t.h"

namespace torlan {

/// Takes what was typed apart. Options stand anywhere, as "--name value" or "--name=value"; "--"
/// ends them. What begins with "-" and goes on as a number does is a value. The folder is "var"
/// unless it is given. Pure.
/// @param _words without the program's name
base::result_of_t<call_t> parse_call(const QStringList& _words, const commands_t& _commands);

/// The option that a word is, without its dashes and its value; empty: it is none.
QString option_in(const QString& _word);

/// The option of this name, whichever command it belongs to; null: there is none.
const option_t* find_any_option(const QString& _name, const commands_t& _commands);

/// The command that words begin with; null: none.
const command_t* find_command(const QStringList& _words, const commands_t& _commands);

}  // namespace torlan
