#include "line/completion.h"

#include <algorithm>
#include <utility>

#include "line/parse_call.h"

namespace torlan {

namespace {

const QLatin1Char equals('=');

/// Joins what a shell has taken apart at "=".
QStringList joined(const QStringList& _words) {
    QStringList whole;
    bool goes_on = false;
    for (const QString& word : _words) {
        const bool is_sign = word == equals;
        if ((is_sign || goes_on) && !whole.isEmpty()) {
            whole.last() += word;
        } else {
            whole.append(word);
        }
        goes_on = is_sign;
    }
    return whole;
}

class line_so_far_t {
 public:
    line_so_far_t(const QStringList& _words, const commands_t& _commands) : commands(_commands) {
        for (const QString& word : _words) {
            take(word);
        }
    }

    wanted_t wanted(const QString& _begun) const {
        wanted_t wanted = place_of(_begun);
        wanted.data = data;
        if (wanted.kind.contains(QLatin1Char('|'))) {
            wanted.words = std::exchange(wanted.kind, {}).split(QLatin1Char('|'));
        }
        return wanted;
    }

 private:
    void take(const QString& _word) {
        if (waiting != nullptr) {
            data = QLatin1String(waiting->name) == QLatin1String("data") ? _word : data;
            waiting = nullptr;
            return;
        }
        const QString name = are_over ? QString() : option_in(_word);
        are_over = are_over || _word == QLatin1String("--");
        if (name.isEmpty() && _word != QLatin1String("--")) {
            words.append(_word);
        }
        const option_t* const option = find_any_option(name, commands);
        if (option == nullptr) {
            return;
        }
        given.append(name);
        const bool is_joined = _word.contains(equals);
        waiting = *option->value != '\0' && !is_joined ? option : nullptr;
        if (is_joined && name == QLatin1String("data")) {
            data = _word.section(equals, 1);
        }
    }

    wanted_t place_of(const QString& _begun) const {
        if (waiting != nullptr) {
            return {{}, QLatin1String(waiting->value), _begun};
        }
        const command_t* const command = words.isEmpty() ? nullptr : find_command(words, commands);
        if (!are_over && _begun.startsWith(QLatin1Char('-'))) {
            return option_at(_begun, command);
        }
        return command == nullptr ? wanted_t{next_words(), {}, _begun}
                                  : argument_at(_begun, *command);
    }

    wanted_t option_at(const QString& _begun, const command_t* _command) const {
        const option_t* const option =
            _begun.contains(equals) ? find_any_option(option_in(_begun), commands) : nullptr;
        if (option != nullptr) {
            return {{}, QLatin1String(option->value), _begun.section(equals, 1)};
        }
        QStringList names;
        for (const option_t& each : common_options()) {
            names.append(QLatin1String("--") + QLatin1String(each.name));
        }
        for (const option_t& each : _command == nullptr ? QList<option_t>() : _command->options) {
            names.append(QLatin1String("--") + QLatin1String(each.name));
        }
        return {names, {}, _begun};
    }

    QStringList next_words() const {
        QStringList next;
        for (const command_t& command : commands) {
            const QStringList parts = command.words();
            const QString word = parts.value(words.size());
            const bool fits = parts.mid(0, words.size()) == words;
            if (fits && !command.is_hidden && !word.isEmpty() && !next.contains(word)) {
                next.append(word);
            }
        }
        return next;
    }

    wanted_t argument_at(const QString& _begun, const command_t& _command) const {
        QList<argument_t> left;
        for (const argument_t& argument : arguments_of(_command.arguments)) {
            const bool is_replaced =
                std::any_of(argument.instead.begin(), argument.instead.end(),
                            [this](const QString& _name) { return given.contains(_name); });
            if (!is_replaced) {
                left.append(argument);
            }
        }
        const qsizetype place = words.size() - _command.words().size();
        const bool is_many = !left.isEmpty() && left.constLast().is_many;
        if (place >= left.size() && !is_many) {
            return {};
        }
        const QString name = left[std::min(place, left.size() - 1)].name;
        const int side = name.contains(equals) && _begun.contains(equals) ? 1 : 0;
        return {{}, name.section(equals, side, side), _begun.section(equals, side)};
    }

    const commands_t& commands;
    QStringList words;
    QStringList given;
    const option_t* waiting = nullptr;
    bool are_over = false;
    QString data = QStringLiteral("var");
};

}  // namespace

wanted_t completion_of(const QStringList& _words, const commands_t& _commands) {
    QStringList typed = joined(_words);
    const QString begun = typed.isEmpty() ? QString() : typed.takeLast();
    return line_so_far_t(typed, _commands).wanted(begun);
}

QString bash_completion() {
    return QStringLiteral(
        R"(# bash completion of torlanctl, which knows the names of an installation
_torlanctl() {
    local current="${COMP_WORDS[COMP_CWORD]}" found
    [[ $current == = ]] && current=
    mapfile -t found < <("${COMP_WORDS[0]/#\~/$HOME}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
    COMPREPLY=()
    case ${found[0]} in
        :files)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
        :folders)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
        *)
            COMPREPLY=("${found[@]}") ;;
    esac
}
complete -F _torlanctl torlanctl
)");
}

}  // namespace torlan
