#include "options_t.h"

#include <QCommandLineParser>

#include "program/standard_options.h"

namespace torlan {

using base::result_t;

namespace {

void describe(QCommandLineParser* _parser) {
    _parser->setApplicationDescription(QStringLiteral(
        "Makes an installation file of an ETS project (.knxproj) or of the group addresses that "
        "ETS "
        "exports (CSV, XML).\n\nIt goes to standard output: a file that the shell makes of it is "
        "readable as the shell\nmakes files; one of --output is its owner's alone. What was not "
        "understood is told on\nstandard error. The status is 0 when it is done, 1 when it was "
        "refused, 2 when the call\nwas wrong."));
    add_standard_options(_parser);
    _parser->addOptions({
        {QStringLiteral("password-file"),
         QStringLiteral("The project's password is the first line of FILE. Where the project has "
                        "none, it is the user's."),
         QStringLiteral("FILE")},
        {QStringLiteral("user"),
         QStringLiteral("Add the API user NAME, who may read and write everything; the password is "
                        "asked, or read from standard input."),
         QStringLiteral("NAME")},
        {QStringLiteral("user-password-file"),
         QStringLiteral("The user's password is the first line of FILE."), QStringLiteral("FILE")},
        {QStringLiteral("groups"),
         QStringLiteral("Print the group addresses as JSON and nothing else.")},
        {QStringLiteral("output"),
         QStringLiteral("Write a new file, which its owner alone can read."),
         QStringLiteral("FILE")},
    });
    _parser->addPositionalArgument(QStringLiteral("PROJECT"),
                                   QStringLiteral("The project or export."));
}

result_t check(const options_t& _options, const QStringList& _files) {
    if (_files.isEmpty()) {
        return result_t::failed(QStringLiteral("PROJECT is missing."));
    }
    if (_files.size() > 1) {
        return result_t::failed(QStringLiteral("Unknown argument '%1'.").arg(_files[1]));
    }
    if (!_options.user.isEmpty() && _options.only_groups) {
        return result_t::failed(QStringLiteral("--groups prints no installation: no --user."));
    }
    if (_options.user.isEmpty() && !_options.user_password_file.isEmpty()) {
        return result_t::failed(QStringLiteral("--user-password-file goes with --user NAME."));
    }
    return {};
}

}  // namespace

base::result_of_t<options_t> parse_options(const QStringList& _arguments) {
    QCommandLineParser parser;
    describe(&parser);
    if (!parser.parse(_arguments)) {
        return result_t::failed(parser.errorText());
    }
    options_t options;
    options.to_show = standard_answer(parser);
    if (!options.to_show.isEmpty()) {
        return options;
    }
    for (const char* name : {"password-file", "user", "user-password-file", "output"}) {
        const QString option = QLatin1String(name);
        if (parser.isSet(option) && parser.value(option).isEmpty()) {
            return result_t::failed(QStringLiteral("--%1 is empty.").arg(option));
        }
    }
    options.project = parser.positionalArguments().value(0);
    options.password_file = parser.value(QStringLiteral("password-file"));
    options.user = parser.value(QStringLiteral("user"));
    options.user_password_file = parser.value(QStringLiteral("user-password-file"));
    options.output = parser.value(QStringLiteral("output"));
    options.only_groups = parser.isSet(QStringLiteral("groups"));
    const result_t checked = check(options, parser.positionalArguments());
    if (!checked.is_ok()) {
        return checked;
    }
    return options;
}

}  // namespace torlan
