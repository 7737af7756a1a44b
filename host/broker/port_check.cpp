#include "broker/port_check.h"

#include <QHostAddress>
#include <QTcpServer>

namespace broker {

bool is_port_free(quint16 _port) {
    QTcpServer server;
    return server.listen(QHostAddress::LocalHost, _port);
}

base::result_t check_ports(const QList<quint16>& _ports, const port_holder_t& _holder) {
    for (const quint16 port : _ports) {
        if (port == 0 || is_port_free(port)) {
            continue;
        }
        const QString holder = _holder ? _holder(port) : QString();
        return base::result_t::failed(
            QStringLiteral("Port %1 of 127.0.0.1 is already in use%2.")
                .arg(QString::number(port),
                     holder.isEmpty() ? QString() : QStringLiteral(" by ") + holder));
    }
    return {};
}

}  // namespace broker
