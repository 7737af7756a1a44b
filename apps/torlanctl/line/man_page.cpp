#include "line/man_page.h"

#include "line/help_text.h"

namespace torlan {

namespace {

/// As text: nothing in it is an instruction, and dashes stay what people type.
QString text(QString _plain) {
    _plain.replace(QLatin1Char('\\'), QLatin1String("\\e"));
    _plain.replace(QLatin1Char('-'), QLatin1String("\\-"));
    _plain.replace(QLatin1Char('\n'), QLatin1Char(' '));
    const bool is_instruction =
        _plain.startsWith(QLatin1Char('.')) || _plain.startsWith(QLatin1Char('\''));
    return is_instruction ? QLatin1String("\\&") + _plain : _plain;
}

QString entry(const QString& _typed, const QString& _help) {
    return QStringLiteral(".TP\n\\fB%1\\fR\n%2\n").arg(text(_typed), text(_help));
}

QString option_entry(const option_t& _option) {
    return entry(QStringLiteral("--%1 %2")
                     .arg(QLatin1String(_option.name), QLatin1String(_option.value))
                     .trimmed(),
                 QLatin1String(_option.help));
}

QString section(const char* _title) {
    return QStringLiteral(".SH %1\n").arg(QLatin1String(_title));
}

QString command_section(const command_t& _command) {
    QString page = QStringLiteral(".SS \"%1\"\n%2.\n")
                       .arg(text(typed_text(_command)), text(QLatin1String(_command.help)));
    if (*_command.more != '\0') {
        page += QStringLiteral(".PP\n%1\n").arg(text(QLatin1String(_command.more)));
    }
    for (const option_t& option : _command.options) {
        page += option_entry(option);
    }
    if (!_command.examples.isEmpty()) {
        page += QStringLiteral(".PP\n.nf\n");
        for (const QString& example : _command.examples) {
            page += QStringLiteral("    torlanctl %1\n").arg(text(example));
        }
        page += QStringLiteral(".fi\n");
    }
    return page;
}

}  // namespace

QString man_page(const commands_t& _commands, const QString& _version) {
    QString page = QStringLiteral(".TH TORLANCTL 1 \"\" \"torlan %1\" \"torlan\"\n").arg(_version);
    page += section("NAME") +
            QStringLiteral("torlanctl \\- reads and changes a building's installation\n");
    page += section("SYNOPSIS") +
            QStringLiteral("\\fBtorlanctl\\fR [\\-\\-data DIR] COMMAND [ARGUMENTS] [OPTIONS]\n");
    page += section("DESCRIPTION") +
            text(QStringLiteral("Works on the installation in a data folder, whether its host runs "
                                "or not. ") +
                 QLatin1String(words_paragraph())) +
            QLatin1Char('\n');
    for (const option_t& option : common_options()) {
        page += option_entry(option);
    }
    page += section("COMMANDS");
    for (const command_t& command : _commands) {
        page += command.is_hidden ? QString() : command_section(command);
    }
    page += section("EXIT STATUS");
    for (const status_text_t& each : status_texts()) {
        page += entry(QString::number(each.status), QLatin1String(each.meaning));
    }
    return page;
}

}  // namespace torlan
