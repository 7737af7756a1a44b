#include "endpoint/api_topic_t.h"

#include <QStringList>

namespace comunication {

namespace {
const QLatin1String request_word("request");
const QLatin1String status_word("status");
}  // namespace

bool api_topic_t::is_request() const {
    return type == request_word;
}

api_topic_t api_topic_t::parse(const QString& _topic) {
    const QStringList levels = _topic.split(u'/');
    if (levels.size() < 5 || levels[0] != u"local" || levels[1] != u"api" || levels[2].isEmpty() ||
        levels[3].isEmpty()) {
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

QString api_topic_t::answer(const QString& _topic) {
    return QString(_topic).replace(request_word, status_word);
}

}  // namespace comunication
