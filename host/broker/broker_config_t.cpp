#include "broker/broker_config_t.h"

#include <QRegularExpression>

namespace broker {

namespace {

bool matches(const char* _pattern, const QString& _text) {
    const QRegularExpression expression(
        QRegularExpression::anchoredPattern(QLatin1String(_pattern)));
    return expression.match(_text).hasMatch();
}

broker_result_t check_settings(const broker_settings_t& _settings) {
    if (!matches("@[0-9a-zA-Z._-]+", _settings.host_account)) {
        return {QStringLiteral("The host's broker account \"%1\" must be '@' and letters.")
                    .arg(_settings.host_account)};
    }
    const QString& topic = _settings.connection_topic;
    if (!matches("[^#+%\\x{0}-\\x{1f}]*", topic) || topic.startsWith(u'$') ||
        topic != topic.trimmed()) {
        return {QStringLiteral("The connection topic \"%1\" is not a plain MQTT topic.")
                    .arg(_settings.connection_topic)};
    }
    return {};
}

}  // namespace

broker_result_t broker_config_t::check(const broker_settings_t& _settings,
                                       const QList<broker_account_t>& _accounts) {
    for (const broker_account_t& account : _accounts) {
        if (account.name != _settings.host_account && !matches("[0-9a-zA-Z._-]+", account.name)) {
            return {QStringLiteral("The user name \"%1\" cannot be a broker account.")
                        .arg(account.name)};
        }
        if (!matches("\\$7\\$[1-9][0-9]*\\$[0-9a-zA-Z+/]+=*\\$[0-9a-zA-Z+/]+=*",
                     account.password_hash)) {
            return {QStringLiteral("The password hash of user \"%1\" has not the broker's form.")
                        .arg(account.name)};
        }
    }
    return check_settings(_settings);
}

QByteArray broker_config_t::configuration(const broker_settings_t& _settings,
                                          const QString& _password_file, const QString& _acl_file) {
    QByteArray text = "# Written by the server at every start: changes here are lost.\n";
    text += "listener " + QByteArray::number(_settings.port) + " 127.0.0.1\nprotocol mqtt\n";
    if (_settings.websocket_port != 0) {
        // Without the domain, version 2.0.11 ignores the address and listens everywhere.
        text += "listener " + QByteArray::number(_settings.websocket_port) +
                " 127.0.0.1\nprotocol websockets\nsocket_domain ipv4\n";
    }
    text += "allow_anonymous false\n";
    text += "password_file " + _password_file.toLocal8Bit() + "\n";
    text += "acl_file " + _acl_file.toLocal8Bit() + "\n";
    text += "persistence false\n";
    // Nagle's algorithm makes one QoS 2 round trip 80 ms long.
    text += "set_tcp_nodelay true\n";
    // The default of 1,000 silently cuts what a late subscriber gets of the retained messages. 0
    // means no limit too, but then 2.0.11 throws off every client whose message is not permitted.
    text += "max_queued_messages 1000000000\n";
    text += "max_queued_bytes " + QByteArray::number(_settings.queued_bytes) + "\n";
    text += "max_inflight_messages " + QByteArray::number(_settings.in_flight_messages) + "\n";
    text += "max_packet_size " + QByteArray::number(_settings.packet_bytes) + "\n";
    text += "sys_interval 0\n";
    text += "log_dest stdout\nlog_type error\nlog_type warning\n";
    return text;
}

QByteArray broker_config_t::password_file(const QList<broker_account_t>& _accounts) {
    QByteArray text;
    for (const broker_account_t& account : _accounts) {
        text += account.name.toUtf8() + ":" + account.password_hash.toUtf8() + "\n";
    }
    return text;
}

QByteArray broker_config_t::acl_file(const broker_settings_t& _settings) {
    QByteArray text = "user " + _settings.host_account.toUtf8() + "\ntopic readwrite #\n\n";
    text += "pattern write local/api/v1/%u/+/request/#\n";
    text += "pattern read local/api/v1/%u/#\n";
    if (!_settings.connection_topic.isEmpty()) {
        text += "pattern read " + _settings.connection_topic.toUtf8() + "\n";
    }
    return text;
}

}  // namespace broker
