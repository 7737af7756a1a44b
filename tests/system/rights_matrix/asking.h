#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include "kit/raw_mqtt_t.h"

/// Requests and answers through a raw client that subscribes to its own tree.
namespace matrix {

struct request_t {
    QByteArray topic;
    QJsonObject payload{};
};

/// "local/api/v1/<user>/<rest>".
QByteArray own(const QString& _user, const QByteArray& _rest);

/// The topic of a request on one element, or on the list.
QByteArray request_topic(const QString& _user, const char* _verb, const QByteArray& _id = {});

QByteArray state_topic(const QString& _user, const QByteArray& _id);

QByteArray text_of(const QJsonObject& _object);
QJsonObject object_of(const QByteArray& _text);

/// A text that nobody else uses, for a "uuid".
QString new_uuid();

/// The answers, in the order of the requests; an empty one did not come. All that came before the
/// last one has been read, too.
QList<QJsonObject> ask(kit::raw_mqtt_t& _client, const QList<request_t>& _requests);

/// What was published to this user before is there.
/// False: the connection has ended.
bool settle(kit::raw_mqtt_t& _client, const QString& _user);

/// Whether @p _message is a state, and not the end of one.
bool is_state(const kit::raw_message_t& _message, const QString& _user, const QByteArray& _id);

/// "data"."functions"[_function]."value" of a state.
QString value_in(const QJsonObject& _element, const QByteArray& _function);

/// {"functions": {_function: _value}}.
QJsonObject functions_of(const QByteArray& _function, const QString& _value);

}  // namespace matrix
