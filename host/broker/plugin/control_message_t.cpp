#include "broker/plugin/control_message_t.h"

#include <charconv>

#include "broker/plugin/account_name.h"

namespace broker::plugin {

namespace {

/// What stands before the next @p _separator, which is taken off too.
std::string_view take(std::string_view* _text, char _separator) {
    const auto end = _text->find(_separator);
    const std::string_view taken = _text->substr(0, end);
    _text->remove_prefix(end == std::string_view::npos ? _text->size() : end + 1);
    return taken;
}

bool read_head(control_message_t* _message, std::string_view _line) {
    using kind_t = control_message_t::kind_t;
    const std::string_view word = take(&_line, ' ');
    if (word != "all" && word != "change" && word != "seen") {
        return false;
    }
    _message->kind = word == "all" ? kind_t::all : word == "change" ? kind_t::change : kind_t::seen;
    const auto [end, error] = std::from_chars(_line.begin(), _line.end(), _message->number);
    return error == std::errc() && end == _line.end();
}

/// Empty, or why the row is left out.
std::string add_user(control_message_t* _message, std::string_view _rest) {
    const std::string name(take(&_rest, ' '));
    if (!is_account_name(name)) {
        return "the name cannot be an account's";
    }
    if (_message->users.count(name) != 0) {
        return name + " stands twice";
    }
    const auto hash = stored_hash_t::parse(_rest);
    if (!hash) {
        _message->removed.push_back(name);
        return name + "'s password hash has another form";
    }
    _message->users.emplace(name, *hash);
    return {};
}

std::string read_row(control_message_t* _message, std::string_view _line) {
    const std::string_view word = take(&_line, ' ');
    if (word == "user") {
        return add_user(_message, _line);
    }
    if (word == "connection") {
        _message->connection_topic = std::string(_line);
        return {};
    }
    if (word != "remove" && word != "withdraw") {
        return "unknown word";
    }
    if (!is_account_name(_line)) {
        return "the name cannot be an account's";
    }
    (word == "remove" ? _message->removed : _message->withdrawn).emplace_back(_line);
    return {};
}

}  // namespace

control_message_t control_message_t::parse(std::string_view _text) {
    control_message_t message;
    if (!read_head(&message, take(&_text, '\n'))) {
        message.refused = "it does not begin with a known word and a number";
        return message;
    }
    for (int line = 2; !_text.empty(); ++line) {
        const std::string_view row = take(&_text, '\n');
        if (row == "end" && _text.empty()) {
            return message;
        }
        if (const std::string why = read_row(&message, row); !why.empty()) {
            message.left_out.push_back("line " + std::to_string(line) + ": " + why);
        }
    }
    message.refused = "its end is missing";
    return message;
}

}  // namespace broker::plugin
