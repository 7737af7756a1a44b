#include "line/help_text.h"

namespace torlan {

namespace {

/// Two columns.
QString row(const QString& _left, const QString& _right, int _width) {
    return _left.size() < _width
               ? QStringLiteral("  %1 %2\n").arg(_left, -_width).arg(_right)
               : QStringLiteral("  %1\n  %2 %3\n").arg(_left, QString(_width, u' '), _right);
}

QString option_rows(const QList<option_t>& _options) {
    QString rows;
    for (const option_t& option : _options) {
        const QString typed =
            QStringLiteral("--%1 %2").arg(QLatin1String(option.name), QLatin1String(option.value));
        rows += row(typed.trimmed(), QLatin1String(option.help), 22);
    }
    return rows;
}

QString command_rows(const commands_t& _commands, const QString& _word) {
    QString rows;
    for (const command_t& command : _commands) {
        const bool is_wanted = _word.isEmpty() || command.words()[0] == _word;
        if (is_wanted && !command.is_hidden) {
            rows += row(typed_text(command), QLatin1String(command.help), 34);
        }
    }
    return rows;
}

QString status_rows() {
    QString rows;
    for (const status_text_t& each : status_texts()) {
        rows += row(QString::number(each.status), QLatin1String(each.meaning), 2);
    }
    return rows;
}

QString paragraph(const char* _title, const QString& _text) {
    return _text.isEmpty() ? QString()
                           : QStringLiteral("\n%1:\n%2").arg(QLatin1String(_title), _text);
}

}  // namespace

const char* words_paragraph() {
    return "USER is a user name; ELEMENT, ITEM, SCENARIO and THERMOSTAT are identifiers; "
           "PERMISSION "
           "is\nread, write, readwrite or deny. Options stand anywhere, -- ends them.\n";
}

const QList<status_text_t>& status_texts() {
    static const QList<status_text_t> texts{
        {status_done, "done, or ended because somebody asked for it"},
        {status_failed, "refused, or not possible; doctor: there is a problem"},
        {status_usage, "the call was wrong"},
        {status_stored, "stored, but the server that runs does not follow yet"},
        {status_sign_in, "get, put, watch, request: the broker did not let the user in"},
        {status_silent, "the same: nobody answered, or there was no connection"},
        {status_unconfirmed, "put --confirm: accepted, but the value did not come"},
    };
    return texts;
}

QString help_of_program(const commands_t& _commands) {
    return QStringLiteral(
               "Usage: torlanctl [--data DIR] COMMAND [ARGUMENTS] [OPTIONS]\n"
               "Reads and changes an installation, whether its host runs or not.\n") +
           paragraph("Commands", command_rows(_commands, {})) +
           paragraph("Options", option_rows(common_options())) + QLatin1Char('\n') +
           QLatin1String(words_paragraph()) + paragraph("Status", status_rows()) +
           QStringLiteral("\ntorlanctl COMMAND --help tells more, with examples.\n");
}

QString help_of_group(const QString& _word, const commands_t& _commands) {
    return paragraph("Commands", command_rows(_commands, _word)).mid(1);
}

QString help_of_command(const command_t& _command) {
    QString examples;
    for (const QString& example : _command.examples) {
        examples += QStringLiteral("  torlanctl %1\n").arg(example);
    }
    QString help = QLatin1String(_command.help);
    help[0] = help[0].toUpper();
    const QString more = QLatin1String(_command.more);
    return QStringLiteral("Usage: %1\n%2.\n").arg(usage_text(_command), help) +
           (more.isEmpty() ? QString() : QLatin1Char('\n') + more + QLatin1Char('\n')) +
           paragraph("Options", option_rows(_command.options)) + paragraph("Examples", examples);
}

}  // namespace torlan
