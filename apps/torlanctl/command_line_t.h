#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include "command_t.h"

namespace torlanctl {

/// What was typed: options, a command and its arguments.
class command_line_t {
 public:
    command_line_t();

    /// Takes the program's arguments apart, the program's name first.
    /// @return why they make no call, in words; empty: they do, or ask for help or the version.
    QString parse(const QStringList& _arguments);

    bool wants_help() const { return parser.isSet(help_option); }
    bool wants_version() const { return parser.isSet(version_option); }
    QString help() const { return parser.helpText(); }

    /// Runs the command that parse() found.
    database::store::result_t run() const;

 private:
    QString find_command();

    QCommandLineParser parser;
    const QCommandLineOption data_option;
    const QCommandLineOption help_option;
    const QCommandLineOption version_option;
    const command_t* command = nullptr;
    QStringList arguments;
};

}  // namespace torlanctl
