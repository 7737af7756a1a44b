#include "command_line_t.h"

#include <algorithm>

#include "commands.h"
#include "database/name_rules.h"
#include "effect.h"
#include "program/standard_options.h"

namespace torlan {

namespace {

QString typed(const command_t& _command) {
    return QStringLiteral("%1 %2")
        .arg(QLatin1String(_command.name), QLatin1String(_command.arguments))
        .trimmed();
}

QString usage(const command_t& _command) {
    return QLatin1String(_command.needs_data ? "torlanctl --data DIR " : "torlanctl ") +
           typed(_command);
}

/// The words of a command that is none, as many as commands with this first word have.
QString start_of(const QStringList& _words) {
    const bool has_two =
        std::any_of(commands().begin(), commands().end(), [&_words](const command_t& _command) {
            return _command.words().size() == 2 && _command.words()[0] == _words[0] &&
                   !_command.words()[1].startsWith(QLatin1Char('-'));
        });
    return _words.mid(0, has_two ? 2 : 1).join(QLatin1Char(' '));
}

QString command_list() {
    QString list;
    for (const command_t& command : commands()) {
        list +=
            QStringLiteral("  %1%2\n").arg(typed(command), -32).arg(QLatin1String(command.help));
    }
    return list;
}

}  // namespace

command_line_t::command_line_t()
    : data_option(QStringLiteral("data"), QStringLiteral("The data folder of the installation."),
                  QStringLiteral("DIR")) {
    // A value may begin with "-": whatever follows the command is no option.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.addOption(data_option);
    add_standard_options(&parser);
    parser.addPositionalArgument(QStringLiteral("command"),
                                 QStringLiteral("What to do, with its arguments."),
                                 QStringLiteral("--data DIR command [arguments]"));
    parser.setApplicationDescription(
        QStringLiteral(
            "Reads and changes an installation, whether its host runs or not.\n\nCommands:\n") +
        command_list() +
        QStringLiteral(
            "\nUSER is a user name, ELEMENT and ITEM are identifiers. The status is 0 when "
            "it is done,\n1 when it was refused, 2 when the call was wrong, 3 when it is stored, "
            "but "
            "a server that\nruns does not follow yet."));
}

base::result_t command_line_t::parse(const QStringList& _arguments) {
    if (!parser.parse(_arguments)) {
        return base::result_t::failed(parser.errorText());
    }
    if (!to_show().isEmpty()) {
        return {};
    }
    if (const base::result_t found = find_command(); !found.is_ok()) {
        return found;
    }
    return command->needs_data && parser.value(data_option).isEmpty()
               ? base::result_t::failed(QStringLiteral("--data DIR is missing."))
               : base::result_t();
}

QString command_line_t::to_show() const {
    return standard_answer(parser);
}

base::result_t command_line_t::find_command() {
    const QStringList words = parser.positionalArguments();
    if (words.isEmpty()) {
        return base::result_t::failed(QStringLiteral("A command is missing."));
    }
    const auto found =
        std::find_if(commands().begin(), commands().end(), [&words](const command_t& _candidate) {
            return words.mid(0, _candidate.words().size()) == _candidate.words();
        });
    if (found == commands().end()) {
        return base::result_t::failed(
            QStringLiteral("There is no command %1.").arg(database::quoted(start_of(words))));
    }
    command = &*found;
    arguments = words.mid(command->words().size());
    if (command->check != nullptr) {
        return command->check(arguments);
    }
    return arguments.size() == command->argument_count()
               ? base::result_t()
               : base::result_t::failed(QStringLiteral("Usage: %1.").arg(usage(*command)));
}

base::result_t command_line_t::run() const {
    return command->run(parser.value(data_option), arguments);
}

base::result_t command_line_t::follow_up() const {
    return command->changes ? await_effect(parser.value(data_option)) : base::result_t();
}

}  // namespace torlan
