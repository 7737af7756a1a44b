#pragma once

#include <QJsonObject>
#include <QString>

#include "kit/mqtt_client_t.h"
#include "kit/password_of.h"
#include "system/support/host_process_t.h"

namespace support {

/// "local/api/v1/<user>/me/request/<verb>/elements/objects_list[/<id>]".
inline QString request_topic(const QString& _username, const QString& _verb,
                             const QString& _id = {}) {
    const QString list =
        QStringLiteral("local/api/v1/%1/me/request/%2/elements/objects_list").arg(_username, _verb);
    return _id.isEmpty() ? list : list + QLatin1Char('/') + _id;
}

inline QString state_topic(const QString& _username, const QString& _id) {
    return QStringLiteral("local/api/v1/%1/status/elements/objects_list/%2").arg(_username, _id);
}

/// {"data": {"functions": {_function: _value}}}.
inline QJsonObject write_payload(const QString& _function, const QJsonValue& _value) {
    return {{QStringLiteral("data"),
             QJsonObject{{QStringLiteral("functions"), QJsonObject{{_function, _value}}}}}};
}

/// "data"."functions"[_function]."value" of a state or an answer to a read.
inline QString value_in(const QJsonObject& _packet, const QString& _function) {
    return _packet[QLatin1String("data")][QLatin1String("functions")][_function]
                  [QLatin1String("value")]
                      .toString();
}

/// Signs _username in and subscribes everything that it may read.
inline bool join(kit::mqtt_client_t& _client, const host_process_t& _host,
                 const QString& _username) {
    return _client.sign_in(_host.port(), _username, kit::password_of(_username)) == 0 &&
           _client.subscribe(QStringLiteral("local/api/v1/%1/#").arg(_username));
}

}  // namespace support
