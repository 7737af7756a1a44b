#include "broker/port_probe_t.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

namespace broker {

namespace {
constexpr auto between_attempts = std::chrono::milliseconds(10);
constexpr char ping[] = {'\xc0', '\0'};
}  // namespace

port_probe_t::port_probe_t(QObject* _parent)
    : QObject(_parent), pause(this), socket(std::make_unique<QTcpSocket>()) {
    pause.setSingleShot(true);
    pause.setInterval(between_attempts);
    connect(&pause, &QTimer::timeout, this, [this]() { attempt(); });
    connect(socket.get(), &QTcpSocket::connected, this,
            [this]() { socket->write(ping, sizeof ping); });
    connect(socket.get(), &QTcpSocket::errorOccurred, this,
            [this](QAbstractSocket::SocketError _error) {
                if (_error != QAbstractSocket::RemoteHostClosedError) {
                    pause.start();
                    return;
                }
                cancel();
                Q_EMIT listening();
            });
}

port_probe_t::~port_probe_t() {
    cancel();
}

bool port_probe_t::is_free(quint16 _port) {
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost, _port);
}

void port_probe_t::wait_for(quint16 _port) {
    cancel();
    port = _port;
    attempt();
}

void port_probe_t::cancel() {
    pause.stop();
    const QSignalBlocker silent(socket.get());
    socket->abort();
}

void port_probe_t::attempt() {
    socket->abort();
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), port);
}

}  // namespace broker
