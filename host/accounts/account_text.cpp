#include "accounts/account_text.h"

#include <QRegularExpression>

#include "accounts/broker_hash.h"
#include "comunication/api_topics.h"
#include "database/name_rules.h"

namespace accounts {

namespace api_topics = comunication::api_topics;
using base::result_t;

namespace {

bool matches(const QString& _pattern, const QString& _text) {
    const QRegularExpression expression(QRegularExpression::anchoredPattern(_pattern));
    return expression.match(_text).hasMatch();
}

}  // namespace

result_t check_settings(const account_settings_t& _settings) {
    if (!matches(QStringLiteral("@[0-9a-zA-Z._-]+"), _settings.host_account)) {
        return result_t::failed(
            QStringLiteral("The host's broker account \"%1\" must be '@' and letters.")
                .arg(_settings.host_account));
    }
    const QString& topic = _settings.connection_topic;
    if (!matches(QStringLiteral("[^#+%\\x{0}-\\x{1f}]*"), topic) ||
        topic.startsWith(QLatin1Char('$')) || topic != topic.trimmed()) {
        return result_t::failed(
            QStringLiteral("The connection topic \"%1\" is not a plain MQTT topic.").arg(topic));
    }
    return {};
}

sorted_users_t sort_users(const QList<broker_account_t>& _users) {
    sorted_users_t sorted;
    for (const broker_account_t& user : _users) {
        const QString name = database::quoted(user.name);
        if (!database::identifier_error(user.name).isEmpty()) {
            sorted.left_out.append(
                QStringLiteral("The user name %1 cannot be a broker account.").arg(name));
        } else if (user.password_hash.isEmpty()) {
            sorted.left_out.append(QStringLiteral("The user %1 has no password yet.").arg(name));
        } else if (!is_password_hash(user.password_hash)) {
            sorted.left_out.append(
                QStringLiteral("The password hash of user %1 has not the broker's form.")
                    .arg(name));
        } else {
            sorted.fit.append(user);
        }
    }
    return sorted;
}

QByteArray password_file(const QList<broker_account_t>& _accounts) {
    QByteArray text;
    for (const broker_account_t& account : _accounts) {
        text += account.name.toUtf8() + ":" + account.password_hash.toUtf8() + "\n";
    }
    return text;
}

QByteArray acl_file(const account_settings_t& _settings) {
    QByteArray text = "user " + _settings.host_account.toUtf8() + "\ntopic readwrite #\n\n";
    const QByteArray own =
        api_topics::user_root(api_topics::version_1, QStringLiteral("%u")).toUtf8();
    text += "pattern write " + own + "/+/" + api_topics::request_word.toUtf8() + "/#\n";
    text += "pattern read " + own + "/#\n";
    if (!_settings.connection_topic.isEmpty()) {
        text += "pattern read " + _settings.connection_topic.toUtf8() + "\n";
    }
    return text;
}

}  // namespace accounts
