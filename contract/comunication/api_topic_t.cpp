#include "comunication/api_topic_t.h"

#include <QList>
#include <algorithm>
#include <utility>

#include "comunication/api_topics.h"
#include "database/name_rules.h"

namespace comunication {

using api_topics::request_word;
using api_topics::status_word;

bool api_topic_t::is_request() const {
    return type == request_word;
}

api_topic_t api_topic_t::parse(const QString& _topic) {
    const QStringView topic(_topic);
    if (!topic.startsWith(api_topics::root) || topic.mid(api_topics::root.size(), 1) != u"/") {
        return {};
    }
    const QList<QStringView> levels = topic.mid(api_topics::root.size() + 1).split(u'/');
    if (levels.size() < 3) {
        return {};
    }
    QString version = levels[0].toString();
    QString user = levels[1].toString();
    if (!database::identifier_error(version).isEmpty() ||
        !database::identifier_error(user).isEmpty()) {
        return {};
    }
    if (levels.size() > 3 && levels[3] == request_word) {
        const qsizetype behind = levels[3].end() - topic.begin() + 1;
        return {std::move(version), std::move(user), levels[2].toString(), request_word,
                std::min(behind, topic.size())};
    }
    if (levels[2] == status_word) {
        return {std::move(version), std::move(user), {}, status_word};
    }
    return {};
}

}  // namespace comunication
