#pragma once

#include <QList>
#include <QObject>

namespace knx {

/// Asks knxd's group cache on a connection of its own: a knxd without one ends the connection at
/// the first question. Lives in a thread of its own; read() is called queued.
class cache_reader_t : public QObject {
    Q_OBJECT

 public:
    cache_reader_t();
    ~cache_reader_t() override;

    /// Answers with found() for what is known, then with finished().
    void read(const QString& _url, const QList<quint16>& _addresses);

 Q_SIGNALS:
    void found(int _source, int _destination, const QByteArray& _apdu);
    void finished();
};

}  // namespace knx
