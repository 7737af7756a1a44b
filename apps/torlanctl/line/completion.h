#pragma once

#include <QStringList>

#include "line/command_t.h"

namespace torlan {

/// What may stand where somebody asks for a completion.
struct wanted_t {
    QStringList words{};  ///< these
    QString kind{};       ///< or what is named so: "USER", "FILE"; empty: nothing but the words
    QString begun{};      ///< the beginning that is there
    QString data{};       ///< the folder that the line names
};

/// Looks at a line that is being typed. Pure.
/// @param _words without the program's name, the last is the one to be completed; a shell may have
///        made words of their own of "=" and what is on its sides
wanted_t completion_of(const QStringList& _words, const commands_t& _commands);

/// The function for bash, which asks "torlanctl complete".
QString bash_completion();

}  // namespace torlan
