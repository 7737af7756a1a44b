#include "system/rights_matrix/asking.h"

#include <QHash>
#include <QJsonDocument>

#include "kit/raw_mqtt_t.h"

namespace matrix {

QByteArray own(const QString& _user, const QByteArray& _rest) {
    return "local/api/v1/" + _user.toLatin1() + '/' + _rest;
}

QByteArray request_topic(const QString& _user, const char* _verb, const QByteArray& _id) {
    const QByteArray list = QByteArray("me/request/") + _verb + "/elements/objects_list";
    return own(_user, _id.isEmpty() ? list : list + '/' + _id);
}

QByteArray state_topic(const QString& _user, const QByteArray& _id) {
    return own(_user, "status/elements/objects_list/" + _id);
}

QByteArray text_of(const QJsonObject& _object) {
    return QJsonDocument(_object).toJson(QJsonDocument::Compact);
}

QJsonObject object_of(const QByteArray& _text) {
    return QJsonDocument::fromJson(_text).object();
}

QString new_uuid() {
    static int count = 0;
    return QStringLiteral("uuid-%1-").arg(++count);
}

QList<QJsonObject> ask(kit::raw_mqtt_t& _client, const QList<request_t>& _requests) {
    QHash<QString, qsizetype> places;
    QList<QJsonObject> answers(_requests.size());
    QString last;
    for (qsizetype index = 0; index < _requests.size(); ++index) {
        last = new_uuid();
        places.insert(last, index);
        QJsonObject payload = _requests[index].payload;
        payload.insert(QStringLiteral("uuid"), last);
        if (_client.publish(_requests[index].topic, text_of(payload)) == kit::raw_mqtt_t::closed) {
            return answers;
        }
    }
    // Who subscribes his whole tree hears his own requests, too.
    _client.wait_for_message([&](const kit::raw_message_t& message) {
        if (message.topic.contains("/request/") || !message.payload.contains("uuid-")) {
            return false;
        }
        const QJsonObject answer = object_of(message.payload);
        const QString uuid = answer.value(QLatin1String("uuid")).toString();
        if (places.contains(uuid)) {
            answers[places.value(uuid)] = answer;
        }
        return uuid == last;
    });
    return answers;
}

bool settle(kit::raw_mqtt_t& _client, const QString& _user) {
    return !ask(_client, {{request_topic(_user, "get")}}).constFirst().isEmpty();
}

bool is_state(const kit::raw_message_t& _message, const QString& _user, const QByteArray& _id) {
    return !_message.payload.isEmpty() && _message.topic == state_topic(_user, _id);
}

QString value_in(const QJsonObject& _element, const QByteArray& _function) {
    return _element.value(QLatin1String("functions"))
        .toObject()
        .value(QLatin1String(_function))
        .toObject()
        .value(QLatin1String("value"))
        .toString();
}

QJsonObject functions_of(const QByteArray& _function, const QString& _value) {
    return {{QStringLiteral("functions"), QJsonObject{{QLatin1String(_function), _value}}}};
}

}  // namespace matrix
