#pragma once

#include <QList>
#include <QString>

#include "kit/raw_mqtt_t.h"

namespace matrix {

/// How a client talks to the broker.
struct door_t {
    int version;  ///< as CONNECT writes it
    kit::raw_mqtt_t::way_t way;

    QString name() const {
        const char* const protocol = version == 3 ? "3.1" : version == 4 ? "3.1.1" : "5";
        const bool is_tcp = way == kit::raw_mqtt_t::way_t::tcp;
        return QStringLiteral("MQTT %1 %2")
            .arg(QLatin1String(protocol), QLatin1String(is_tcp ? "TCP" : "WebSockets"));
    }
};

inline QList<door_t> all_doors() {
    QList<door_t> doors;
    for (const auto way : {kit::raw_mqtt_t::way_t::tcp, kit::raw_mqtt_t::way_t::websockets}) {
        for (const int version : {3, 4, 5}) {
            doors.append({version, way});
        }
    }
    return doors;
}

/// Where the doors of one server are.
struct ports_t {
    quint16 tcp;
    quint16 websockets;

    quint16 of(const door_t& _door) const {
        return _door.way == kit::raw_mqtt_t::way_t::tcp ? tcp : websockets;
    }
};

}  // namespace matrix
