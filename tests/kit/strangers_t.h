#pragma once

#include <QByteArray>
#include <QTcpSocket>
#include <algorithm>
#include <memory>
#include <vector>

namespace kit {

/// Sockets that connect, say the same each, and never sign in.
class strangers_t {
 public:
    /// A CONNECT that says it is 4 MiB long, without its last bytes.
    static QByteArray unfinished_connect() {
        return QByteArray("\x10\xf0\xff\xff\x01", 5) + QByteArray((4 << 20) - 100, 'x');
    }

    strangers_t(quint16 _port, int _count, const QByteArray& _words = {}) {
        for (int i = 0; i < _count; ++i) {
            sockets.push_back(std::make_unique<QTcpSocket>());
            QTcpSocket& one = *sockets.back();
            one.connectToHost(QStringLiteral("127.0.0.1"), _port);
            one.waitForConnected(5'000);
            one.write(_words);
            while (one.bytesToWrite() > 0 && one.waitForBytesWritten(5'000)) {
            }
        }
    }

    /// How many the broker has not closed.
    int connected() const {
        return int(std::count_if(sockets.begin(), sockets.end(), [](const auto& _one) {
            return _one->state() == QAbstractSocket::ConnectedState;
        }));
    }

 private:
    std::vector<std::unique_ptr<QTcpSocket>> sockets;
};

}  // namespace kit
