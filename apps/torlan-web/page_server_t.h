#pragma once

#include <QTcpServer>

#include "base/result_t.h"
#include "gate/gate_rules_t.h"
#include "page_folder_t.h"

namespace torlan {

/// Answers browsers of this machine with the files of a page, and with what the page has to know.
/// Main thread, with an event loop.
class page_server_t : public QTcpServer {
    Q_OBJECT

 public:
    /// Connections at once; a further one is told so and closed.
    static constexpr int max_connections = 64;
    /// Of what the server tells the page; a larger file is taken for none.
    static constexpr qint64 max_facts_bytes = 4096;

    /// @param _facts file of a JSON object, looked at anew for each request; empty: none
    /// @param _ws_port where the broker takes WebSockets
    page_server_t(const QString& _facts, quint16 _ws_port, QObject* _parent = nullptr);

    /// Reads the page and listens on 127.0.0.1; @p _port 0 takes a free one.
    base::result_t start(const QString& _pages, quint16 _port);

 protected:
    void incomingConnection(qintptr _descriptor) override;

 private:
    void answer(QTcpSocket* _socket) const;
    /// The facts, and the port with them.
    QByteArray console_json() const;

    const QString facts;
    const quint16 ws_port;
    const QByteArray headers;
    page_folder_t folder;
    int connections = 0;
};

}  // namespace torlan
