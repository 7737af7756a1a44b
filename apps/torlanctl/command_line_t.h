#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include "base/result_t.h"
#include "command_t.h"

namespace torlan {

/// What was typed: options, a command and its arguments.
class command_line_t {
 public:
    command_line_t();

    /// Takes the program's arguments apart, the program's name first: they make a call, or ask for
    /// to_show().
    base::result_t parse(const QStringList& _arguments);

    /// To be printed instead of a call: help, version; empty: none.
    QString to_show() const;

    /// Runs the command that parse() found.
    base::result_t run() const;
    /// Waits until what it changed is effective; ok at once when it changes nothing.
    base::result_t follow_up() const;

 private:
    base::result_t find_command();

    QCommandLineParser parser;
    const QCommandLineOption data_option;
    const command_t* command = nullptr;
    QStringList arguments;
};

}  // namespace torlan
