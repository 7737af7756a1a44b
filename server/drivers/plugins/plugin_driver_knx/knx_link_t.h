#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

#include "knx/knxd/eib_connection_t.h"

namespace knx {

/// The connection that telegrams come and go on. Lives in a thread of its own, because knxd's
/// library blocks; its slots are called queued. It always reads: knxd keeps 100 MB for a client
/// that does not.
class knx_link_t : public QObject {
    Q_OBJECT

 public:
    knx_link_t();
    ~knx_link_t() override;

    /// Answers with opened() or lost().
    void open(const QString& _url);

    /// Answers with sent(), or lost().
    void send(quint16 _destination, const QByteArray& _apdu);

 Q_SIGNALS:
    void opened();
    void lost();
    void received(int _source, int _destination, const QByteArray& _apdu);
    void sent();

 private:
    void read();
    void lose();

    std::unique_ptr<eib_connection_t> connection;
    std::unique_ptr<QSocketNotifier> notifier;
};

}  // namespace knx
