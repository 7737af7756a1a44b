#include "comunication/api_topic_t.h"

#include <QStringList>

#include "comunication/api_topics.h"
#include "database/name_rules.h"

namespace comunication {

using api_topics::request_word;
using api_topics::status_word;

bool api_topic_t::is_request() const {
    return type == request_word;
}

api_topic_t api_topic_t::parse(const QString& _topic) {
    if (!_topic.startsWith(api_topics::root + QLatin1Char('/'))) {
        return {};
    }
    const auto is_name = [](const QString& _level) {
        return database::identifier_error(_level).isEmpty();
    };
    const QStringList levels = _topic.split(QLatin1Char('/'));
    if (levels.size() < 5 || !is_name(levels[2]) || !is_name(levels[3])) {
        return {};
    }
    if (levels.size() > 5 && levels[5] == request_word) {
        return {levels[2], levels[3], levels[4], request_word};
    }
    if (levels[4] == status_word) {
        return {levels[2], levels[3], {}, status_word};
    }
    return {};
}

}  // namespace comunication
