#include "command_line_t.h"

#include <algorithm>

#include "commands.h"
#include "installation/name_rules.h"

namespace torlanctl {

namespace {

QString typed(const command_t& _command) {
    return QStringLiteral("%1 %2").arg(_command.name, _command.arguments).trimmed();
}

QString command_list() {
    QString list;
    for (const command_t& command : commands()) {
        list += QStringLiteral("  %1%2\n").arg(typed(command), -32).arg(command.help);
    }
    return list;
}

}  // namespace

command_line_t::command_line_t()
    : data_option("data", "The data folder of the installation.", "DIR"),
      help_option({"h", "help"}, "Show this text."),
      version_option("version", "Show the version.") {
    // A value may begin with "-": whatever follows the command is no option.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.addOptions({data_option, help_option, version_option});
    parser.addPositionalArgument("command", "What to do, with its arguments.",
                                 "--data DIR command [arguments]");
    parser.setApplicationDescription(
        "Reads and changes an installation, whether its host runs or not.\n\nCommands:\n" +
        command_list() +
        "\nUSER is a user name, ELEMENT and ITEM are identifiers. The status is 0 when it is "
        "done,\n"
        "1 when it was refused, 2 when the call was wrong.");
}

QString command_line_t::parse(const QStringList& _arguments) {
    if (!parser.parse(_arguments)) {
        return parser.errorText();
    }
    if (wants_help() || wants_version()) {
        return {};
    }
    const QString error = find_command();
    if (!error.isEmpty()) {
        return error;
    }
    return parser.value(data_option).isEmpty() ? QStringLiteral("--data DIR is missing.")
                                               : QString();
}

QString command_line_t::find_command() {
    const QStringList words = parser.positionalArguments();
    if (words.isEmpty()) {
        return QStringLiteral("A command is missing.");
    }
    const auto found =
        std::find_if(commands().begin(), commands().end(), [&words](const command_t& _candidate) {
            return words.mid(0, _candidate.words().size()) == _candidate.words();
        });
    if (found == commands().end()) {
        const QString start = words.mid(0, words[0] == QLatin1StringView("user") ? 2 : 1).join(' ');
        return "There is no command " + database::installation::quoted(start) + ".";
    }
    command = &*found;
    arguments = words.mid(command->words().size());
    return arguments.size() == command->argument_count()
               ? QString()
               : QStringLiteral("Usage: torlanctl --data DIR %1.").arg(typed(*command));
}

database::store::result_t command_line_t::run() const {
    return command->run(parser.value(data_option), arguments);
}

}  // namespace torlanctl
