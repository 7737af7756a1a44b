#pragma once

#include <QObject>
#include <QTimer>
#include <memory>

class QTcpSocket;

namespace broker {

/// Watches for an MQTT broker on a port of 127.0.0.1.
///
/// A port is listened on a moment before the broker handles signals, so the probe waits until it
/// is served: a ping without a connection makes a broker hang up.
class port_probe_t : public QObject {
    Q_OBJECT

 public:
    explicit port_probe_t(QObject* _parent = nullptr);
    ~port_probe_t() override;

    /// Whether nobody listens on it now.
    static bool is_free(quint16 _port);

    /// listening() follows, unless cancel() comes first.
    void wait_for(quint16 _port);
    void cancel();

 Q_SIGNALS:
    void listening();

 private:
    void attempt();

    quint16 port = 0;
    QTimer pause;
    std::unique_ptr<QTcpSocket> socket;
};

}  // namespace broker
