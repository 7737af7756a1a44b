#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>

#include "knx/telegram_t.h"

struct _EIBConnection;

namespace knx {

/// One connection to knxd; a thin layer over its client library. Every call may block for as long
/// as knxd or its machine does not answer. One thread.
class eib_connection_t {
 public:
    /// What lies ready.
    enum class state_t { nothing, telegram, lost };

    /// Null: knxd is not there.
    static std::unique_ptr<eib_connection_t> open(const QString& _url);
    ~eib_connection_t();
    Q_DISABLE_COPY_MOVE(eib_connection_t)

    /// From then on telegrams come and can be sent.
    bool open_group_socket();

    /// To be watched for reading.
    int descriptor() const;

    state_t state() const;

    struct received_t {
        quint16 source = 0;
        quint16 destination = 0;
        QByteArray apdu;
    };
    /// To be called when state() says that there is one; nothing: the connection is lost.
    std::optional<received_t> take();

    bool send(group_address_t _destination, const QByteArray& _apdu);

    enum class cached_t { known, unknown, no_cache };
    /// What was last sent to an address. A knxd without a cache ends the connection.
    cached_t read_cache(group_address_t _address, received_t* _found);

 private:
    explicit eib_connection_t(_EIBConnection* _connection) : connection(_connection) {}

    _EIBConnection* const connection;
};

}  // namespace knx
