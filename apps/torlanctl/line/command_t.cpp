#include "line/command_t.h"

#include <algorithm>

namespace torlan {

namespace {

/// "--type N"
QString option_text(const command_t& _command, const QString& _name) {
    const option_t* const option = find_option(_command.options, _name);
    const QString value = option == nullptr ? QString() : QLatin1String(option->value);
    return (QStringLiteral("--%1 %2").arg(_name, value)).trimmed();
}

QString argument_text(const command_t& _command, const argument_t& _argument) {
    QStringList alternatives{_argument.name};
    for (const QString& option : _argument.instead) {
        alternatives.append(option_text(_command, option));
    }
    const QString text =
        alternatives.join(QLatin1Char('|')) + QLatin1String(_argument.is_many ? "..." : "");
    return _argument.is_optional || _argument.is_many ? QLatin1Char('[') + text + QLatin1Char(']')
                                                      : text;
}

/// Whether there are options that its arguments do not name.
bool has_more_options(const command_t& _command) {
    qsizetype named = 0;
    for (const argument_t& argument : arguments_of(_command.arguments)) {
        named += argument.instead.size();
    }
    return _command.options.size() > named;
}

argument_t argument_of(QString _text) {
    argument_t argument;
    argument.is_optional = _text.startsWith(QLatin1Char('['));
    if (argument.is_optional) {
        _text = _text.mid(1, _text.size() - 2);
    }
    argument.is_many = _text.endsWith(QLatin1String("..."));
    if (argument.is_many) {
        _text.chop(3);
    }
    const QStringList alternatives = _text.split(QLatin1Char('|'));
    argument.name = alternatives[0];
    for (const QString& option : alternatives.mid(1)) {
        argument.instead.append(option.mid(2));
    }
    return argument;
}

}  // namespace

QList<argument_t> arguments_of(const char* _text) {
    QList<argument_t> arguments;
    for (const QString& word :
         QString::fromLatin1(_text).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        arguments.append(argument_of(word));
    }
    return arguments;
}

const QList<option_t>& common_options() {
    static const QList<option_t> options{
        {"data", "DIR", "the data folder of the installation; var unless it is given"},
        {"help", "", "show this text; behind a command, that of the command"},
        {"version", "", "show the version"},
    };
    return options;
}

const option_t* find_option(const QList<option_t>& _options, const QString& _name) {
    const auto found = std::find_if(
        _options.begin(), _options.end(),
        [&_name](const option_t& _option) { return _name == QLatin1String(_option.name); });
    return found == _options.end() ? nullptr : &*found;
}

QString typed_text(const command_t& _command) {
    QString text = QLatin1String(_command.name);
    for (const argument_t& argument : arguments_of(_command.arguments)) {
        text += QLatin1Char(' ') + argument_text(_command, argument);
    }
    return text;
}

QString usage_text(const command_t& _command) {
    return QLatin1String(_command.needs_data() ? "torlanctl [--data DIR] " : "torlanctl ") +
           typed_text(_command) + QLatin1String(has_more_options(_command) ? " [OPTIONS]" : "");
}

}  // namespace torlan
