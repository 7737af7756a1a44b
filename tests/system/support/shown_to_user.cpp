#include "system/support/shown_to_user.h"

#include <QDeadlineTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <memory>

#include "kit/raw_mqtt_t.h"
#include "system/support/api_user.h"

namespace support {

using kit::raw_message_t;
using kit::raw_mqtt_t;

QSet<QByteArray> states_due(const QString& _data, const QString& _username) {
    QSet<QByteArray> topics;
    const auto connection = QStringLiteral("states due");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(_data + QStringLiteral("/installation.db"));
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        database.open();
        QSqlQuery query(database);
        query.prepare(
            QStringLiteral("SELECT element FROM permissions JOIN users ON user = id "
                           "WHERE username = ? AND bits & 1"));
        query.addBindValue(_username);
        query.exec();
        while (query.next()) {
            topics.insert(state_topic(_username, query.value(0).toString()).toUtf8());
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return topics;
}

QMap<QByteArray, QByteArray> states_retained(quint16 _port, const QString& _username,
                                             const QString& _password) {
    QMap<QByteArray, QByteArray> states;
    std::unique_ptr<raw_mqtt_t> client;
    // The broker hangs up without an answer when it has no time for a password.
    const QDeadlineTimer limit(30'000);
    for (int code = raw_mqtt_t::closed; code == raw_mqtt_t::closed;) {
        client = std::make_unique<raw_mqtt_t>(raw_mqtt_t::way_t::tcp, QString::number(_port));
        code = client->connect({.name = _username.toUtf8(), .password = _password.toUtf8()});
        if (code > 0 || limit.hasExpired()) {
            return states;
        }
    }
    // QoS 0: the broker does not wait for the client, and an answer to a ping comes behind all.
    client->subscribe(state_topic(_username, QStringLiteral("#")).toUtf8(), 0);
    for (const raw_message_t& message : client->received()) {
        if (message.retain && !message.payload.isEmpty()) {
            states.insert(message.topic, message.payload);
        }
    }
    return states;
}

}  // namespace support
