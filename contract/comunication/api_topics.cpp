#include "comunication/api_topics.h"

#include <QList>
#include <algorithm>

#include "database/name_rules.h"

namespace comunication::api_topics {

const QString version_1 = QStringLiteral("v1");
const QString request_word = QStringLiteral("request");
const QString status_word = QStringLiteral("status");
const QString request_filter = QStringLiteral("local/api/+/+/+/request/#");
const QString status_filter = QStringLiteral("local/api/+/+/status/#");
const QString root = QStringLiteral("local/api");

QString user_root(const QString& _version, const QString& _user) {
    return QStringLiteral("%1/%2/%3").arg(root, _version, _user);
}

namespace {
const QString elements_path = QStringLiteral("elements/objects_list/");
}  // namespace

QString status_filter_of(const QString& _user) {
    return root + QStringLiteral("/+/%1/status/#").arg(_user);
}

QString element_state(const QString& _version, const QString& _user, const QString& _element) {
    return user_root(_version, _user) + QStringLiteral("/status/") + elements_path + _element;
}

QString connection(const QString& _installation) {
    return QStringLiteral("local/%1/connection").arg(_installation);
}

QString element_request(const QString& _version, const QString& _user, const QString& _client,
                        const QString& _verb, const QString& _element) {
    return QStringLiteral("%1/%2/%3/%4/%5")
               .arg(user_root(_version, _user), _client, request_word, _verb, elements_path) +
           _element;
}

QString answer(const QString& _topic) {
    return QString(_topic).replace(request_word, status_word);
}

bool may_be_retained(const QString& _topic) {
    const QStringView topic(_topic);
    if (!topic.startsWith(root) || topic.mid(root.size(), 1) != u"/") {
        return true;
    }
    // Asked for each state of each user: no level is copied.
    const QList<QStringView> levels = topic.split(u'/');
    return std::all_of(levels.begin(), levels.end(), [](QStringView _level) {
        const QString level = QString::fromRawData(_level.data(), _level.size());
        return database::identifier_error(level).isEmpty();
    });
}

}  // namespace comunication::api_topics
