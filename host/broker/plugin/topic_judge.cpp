#include "broker/plugin/topic_judge.h"

namespace broker::plugin {

namespace {

/// Takes @p _word off the beginning of @p _text; false: it does not begin so.
bool take(std::string_view* _text, std::string_view _word) {
    if (!_text->starts_with(_word)) {
        return false;
    }
    _text->remove_prefix(_word.size());
    return true;
}

/// Takes the root of the user's tree off; what is left is empty or begins with '/'.
bool take_root(std::string_view* _topic, std::string_view _user) {
    return !_user.empty() && take(_topic, "local/api/v1/") && take(_topic, _user) &&
           (_topic->empty() || _topic->front() == '/');
}

/// Takes one level of any name off, with the '/' behind it.
bool take_level(std::string_view* _topic) {
    const auto end = _topic->find('/');
    if (end == std::string_view::npos) {
        return false;
    }
    _topic->remove_prefix(end + 1);
    return true;
}

}  // namespace

bool may_write(std::string_view _user, std::string_view _topic, bool _retain) {
    return !_retain && take_root(&_topic, _user) && take(&_topic, "/") && take_level(&_topic) &&
           take(&_topic, "request") && (_topic.empty() || _topic.front() == '/');
}

bool may_read(std::string_view _user, std::string_view _topic, std::string_view _connection_topic) {
    return (!_connection_topic.empty() && _topic == _connection_topic) || take_root(&_topic, _user);
}

bool may_subscribe(std::string_view _user, std::string_view _filter,
                   std::string_view _connection_topic) {
    if (!take(&_filter, "$share/")) {
        return may_read(_user, _filter, _connection_topic);
    }
    const std::string_view group = _filter.substr(0, _filter.find('/'));
    return !group.empty() && group.find_first_of("+#") == std::string_view::npos &&
           take_level(&_filter) && take_root(&_filter, _user);
}

}  // namespace broker::plugin
