#include "web_plan.h"

#include <QFileInfo>
#include <QTcpServer>

#include "program/port_holder.h"

namespace torlan {

namespace {

constexpr quint16 usual_port = 4322;
constexpr quint16 usual_ws_port = 9001;

bool is_free(quint16 _port) {
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost, _port);
}

/// None of @p _others.
quint16 free_port(const QList<quint16>& _others) {
    quint16 port = 0;
    do {
        QTcpServer server;
        port = server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
    } while (port != 0 && _others.contains(port));
    return port;
}

QString in_use(quint16 _port) {
    const QString holder = port_holder(_port);
    return QStringLiteral("port %1 of 127.0.0.1 is already in use%2")
        .arg(QString::number(_port),
             holder.isEmpty() ? QString() : QStringLiteral(" by ") + holder);
}

/// @p _usual, or a free one and a sentence about it.
quint16 choose(const QString& _what, quint16 _usual, const QList<quint16>& _others,
               QStringList* _told) {
    if (!_others.contains(_usual) && is_free(_usual)) {
        return _usual;
    }
    const quint16 port = free_port(_others);
    const QString reason = _others.contains(_usual)
                               ? QStringLiteral("port %1 is taken by another option").arg(_usual)
                               : in_use(_usual);
    _told->append(QStringLiteral("%1; %2 on port %3 instead.").arg(reason, _what).arg(port));
    return port;
}

}  // namespace

base::result_of_t<web_plan_t> plan_web(const options_t& _options, const QString& _pages) {
    web_plan_t plan;
    if (_options.no_web) {
        return plan;
    }
    // What nobody asked for is left out without much ado.
    if (_options.ws_port == quint16(0)) {
        plan.told += QStringLiteral("there is no console: it needs WebSockets, see --ws-port.");
        return plan;
    }
    if (!QFileInfo::exists(_pages + QStringLiteral("/mqtt.js"))) {
        plan.told += QStringLiteral(
            "there is no console: its client library could not be fetched when this was built; "
            "start ./run once with a network.");
        return plan;
    }
    if (_options.web_port && !is_free(*_options.web_port)) {
        const QString sentence = in_use(*_options.web_port);
        return base::result_t::failed(sentence.at(0).toUpper() + sentence.mid(1) +
                                      QLatin1Char('.'));
    }
    QList<quint16> taken{_options.port.value_or(quint16(1883)), _options.config_port};
    web_t web{_pages, 0, 0};
    taken += _options.web_port.value_or(usual_port);
    web.ws_port = _options.ws_port
                      ? *_options.ws_port
                      : choose(QStringLiteral("WebSockets are"), usual_ws_port, taken, &plan.told);
    taken[2] = web.ws_port;
    web.port = _options.web_port
                   ? *_options.web_port
                   : choose(QStringLiteral("the console is"), usual_port, taken, &plan.told);
    plan.web = web;
    return plan;
}

}  // namespace torlan
