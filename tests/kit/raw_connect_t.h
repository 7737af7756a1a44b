#pragma once

#include <QByteArray>

namespace kit {

/// A last will.
struct raw_will_t {
    QByteArray topic{};  ///< empty: none
    QByteArray payload = "will";
    int qos = 1;
    bool retain = false;
    quint32 delay = 0;
};

/// How a client introduces itself.
struct raw_connect_t {
    QByteArray name{};      ///< empty: none is sent
    QByteArray password{};  ///< null: none is sent
    QByteArray id = "client";
    int version = 5;
    bool clean = true;
    quint32 expiry = 0;  ///< of the session; MQTT 5
    quint16 receive_maximum = 0;
    QByteArray auth_method{};
    raw_will_t will{};
};

}  // namespace kit
