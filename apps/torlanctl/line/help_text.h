#pragma once

#include "line/command_t.h"

namespace torlan {

/// What "torlanctl --help" shows.
QString help_of_program(const commands_t& _commands);

/// What "torlanctl user --help" shows: the commands that begin with this word.
QString help_of_group(const QString& _word, const commands_t& _commands);

QString help_of_command(const command_t& _command);

/// What the words for arguments stand for.
const char* words_paragraph();

/// How the program ends.
struct status_text_t {
    exit_status_t status;
    const char* meaning;  ///< one line
};
const QList<status_text_t>& status_texts();

}  // namespace torlan
