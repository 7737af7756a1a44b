#include "line/parse_call.h"

#include <algorithm>
#include <utility>

#include "database/name_rules.h"
#include "line/nearest_word.h"

namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using database::quoted;

QStringList option_names(const QList<option_t>& _options) {
    QStringList names;
    for (const option_t& option : _options + common_options()) {
        names.append(QLatin1String("--") + QLatin1String(option.name));
    }
    return names;
}

QStringList command_names(const commands_t& _commands) {
    QStringList names;
    for (const command_t& command : _commands) {
        if (!command.is_hidden) {
            names.append(QString::fromLatin1(command.name));
        }
    }
    return names;
}

/// What may follow the first word of commands of two; empty: there is none.
QStringList second_words(const QString& _first, const commands_t& _commands) {
    QStringList seconds;
    for (const command_t& command : _commands) {
        const QStringList words = command.words();
        if (words.size() == 2 && words[0] == _first) {
            seconds.append(words[1]);
        }
    }
    return seconds;
}

class parsing_t {
 public:
    explicit parsing_t(const commands_t& _commands) : commands(_commands) {}

    result_of_t<call_t> parse(QStringList _words) {
        if (const result_t split = split_words(std::move(_words)); !split.is_ok()) {
            return split;
        }
        call.data = call.has("data") ? call["data"] : QStringLiteral("var");
        call.command = words.isEmpty() ? nullptr : find_command(words, commands);
        const bool is_shown = call.has("help") || call.has("version");
        if (call.command == nullptr && is_shown && (words.isEmpty() || is_group())) {
            call.group = words.value(0);
            return call;
        }
        if (call.command == nullptr) {
            return no_command();
        }
        if (const result_t known = check_options(); !known.is_ok() || is_shown) {
            return known.is_ok() ? result_of_t<call_t>(call) : result_of_t<call_t>(known);
        }
        const result_t fitted = fit(words.mid(call.command->words().size()));
        return fitted.is_ok() ? result_of_t<call_t>(call) : result_of_t<call_t>(fitted);
    }

 private:
    result_t split_words(QStringList _typed) {
        bool are_over = false;
        while (!_typed.isEmpty()) {
            const QString word = _typed.takeFirst();
            const QString option = are_over ? QString() : option_in(word);
            if (!are_over && word == QLatin1String("--")) {
                are_over = true;
            } else if (option.isEmpty()) {
                words.append(word);
            } else if (const result_t taken = take(option, word, &_typed); !taken.is_ok()) {
                return taken;
            }
        }
        return {};
    }

    result_t take(const QString& _name, const QString& _word, QStringList* _rest) {
        const option_t* const option = find_any_option(_name, commands);
        QStringList& values = call.given[_name];
        if (option == nullptr) {
            return {};  // check_options() says so, with the command's options at hand
        }
        const qsizetype joined = _word.indexOf(QLatin1Char('='));
        const bool takes_value = *option->value != '\0';
        if (joined >= 0 && !takes_value) {
            return result_t::failed(QStringLiteral("--%1 takes no value.").arg(_name));
        }
        if (takes_value && joined < 0 && _rest->isEmpty()) {
            return result_t::failed(QStringLiteral("--%1 takes a value.").arg(_name));
        }
        if (takes_value) {
            values.append(joined >= 0 ? _word.mid(joined + 1) : _rest->takeFirst());
        }
        return {};
    }

    bool is_group() const { return !second_words(words.value(0), commands).isEmpty(); }

    result_t no_command() const {
        for (auto given = call.given.keyBegin(); given != call.given.keyEnd(); ++given) {
            if (find_any_option(*given, commands) == nullptr) {
                return no_option(QStringLiteral("torlanctl"), *given, {});
            }
        }
        if (words.isEmpty()) {
            return result_t::failed(QStringLiteral("A command is missing."));
        }
        const QStringList seconds = second_words(words[0], commands);
        if (!seconds.isEmpty() && words.size() == 1) {
            return result_t::failed(QStringLiteral("%1 is followed by one of %2.")
                                        .arg(words[0], seconds.join(QLatin1String(", "))));
        }
        const QString two = words.mid(0, 2).join(QLatin1Char(' '));
        const QString typed = seconds.isEmpty() ? words[0] : two;
        QString meant = suggestion(two, command_names(commands));
        if (meant.isEmpty()) {
            meant = suggestion(words[0], command_names(commands));
        }
        return result_t::failed(QStringLiteral("There is no command %1.").arg(quoted(typed)) +
                                meant);
    }

    static result_t no_option(const QString& _who, const QString& _name,
                              const QList<option_t>& _options) {
        const QString word = QLatin1String(_name.size() == 1 ? "-" : "--") + _name;
        return result_t::failed(QStringLiteral("%1 has no option %2.").arg(_who, quoted(word)) +
                                suggestion(word, option_names(_options)));
    }

    result_t check_options() const {
        const QList<option_t>& options = call.command->options;
        for (auto given = call.given.keyBegin(); given != call.given.keyEnd(); ++given) {
            if (find_option(options + common_options(), *given) == nullptr) {
                return no_option(QLatin1String(call.command->name), *given, options);
            }
        }
        return {};
    }

    result_t usage() const {
        return result_t::failed(QStringLiteral("Usage: %1.").arg(usage_text(*call.command)));
    }

    /// Whether an option stands in the place of an argument; two cannot.
    result_of_t<bool> is_replaced(const argument_t& _argument) const {
        const auto count =
            std::count_if(_argument.instead.begin(), _argument.instead.end(),
                          [this](const QString& _option) { return call.given.contains(_option); });
        return count > 1 ? result_of_t<bool>(usage()) : result_of_t<bool>(count == 1);
    }

    result_t fit(QStringList _values) {
        QList<argument_t> wanted;
        qsizetype spare = _values.size();
        for (const argument_t& argument : arguments_of(call.command->arguments)) {
            const auto replaced = is_replaced(argument);
            if (!replaced.is_ok()) {
                return replaced;
            }
            if (!replaced.value) {
                wanted.append(argument);
                spare -= argument.is_optional || argument.is_many ? 0 : 1;
            }
        }
        if (spare < 0) {
            return usage();
        }
        for (const argument_t& argument : wanted) {
            if (argument.is_many) {
                call.given[argument.name] = std::exchange(_values, {});
            } else if (!argument.is_optional || spare-- > 0) {
                call.given[argument.name] = {_values.takeFirst()};
            }
        }
        return _values.isEmpty() ? result_t() : usage();
    }

    const commands_t& commands;
    call_t call;
    QStringList words;
};

}  // namespace

result_of_t<call_t> parse_call(const QStringList& _words, const commands_t& _commands) {
    return parsing_t(_commands).parse(_words);
}

QString option_in(const QString& _word) {
    if (_word == QLatin1String("-h")) {
        return QStringLiteral("help");
    }
    if (_word == QLatin1String("-v")) {
        return QStringLiteral("version");
    }
    const QChar second = _word.size() > 1 ? _word[1] : QChar(u'0');
    if (!_word.startsWith(QLatin1Char('-')) || second.isDigit() || second == QLatin1Char('.')) {
        return {};
    }
    return _word.mid(second == QLatin1Char('-') ? 2 : 1).section(QLatin1Char('='), 0, 0);
}

const option_t* find_any_option(const QString& _name, const commands_t& _commands) {
    const option_t* found = find_option(common_options(), _name);
    for (auto i = _commands.begin(); found == nullptr && i != _commands.end(); ++i) {
        found = find_option(i->options, _name);
    }
    return found;
}

const command_t* find_command(const QStringList& _words, const commands_t& _commands) {
    const auto found =
        std::find_if(_commands.begin(), _commands.end(), [&_words](const command_t& _command) {
            const QStringList words = _command.words();
            return _words.mid(0, words.size()) == words;
        });
    return found == _commands.end() ? nullptr : &*found;
}

}  // namespace torlan
