#include "accounts/account_text.h"

#include <QRegularExpression>

#include "accounts/broker_hash.h"
#include "database/name_rules.h"

namespace accounts {

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

QByteArray plugin_lines(const account_settings_t& _settings, const plugin_text_t& _text) {
    return "listener 0 " + _text.socket + "\nplugin " + _text.library +
           "\nplugin_opt_host_account " + _settings.host_account.toUtf8() +
           "\nplugin_opt_host_address " + _text.socket + "\nplugin_opt_host_hash " +
           _text.host_hash.toUtf8() + "\nplugin_opt_idle_seconds " +
           QByteArray::number(qint64(_settings.session_idle.count())) +
           "\nplugin_opt_publishes_per_second " +
           QByteArray::number(_settings.publishes_per_second) + "\nplugin_opt_bytes_per_second " +
           QByteArray::number(_settings.publish_bytes_per_second) + "\n";
}

}  // namespace accounts
