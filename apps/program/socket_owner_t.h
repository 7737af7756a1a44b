#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QHostAddress>
#include <optional>

namespace torlan {

/// Whose a TCP socket of this machine is, as the kernel's tables tell it: every user may listen on
/// loopback and connect to it, and nothing in the connection itself says who it is. Any thread.
///
/// A socket that was closed shows user 0 in the tables, whoever it belonged to; its row has no
/// inode, so only rows with one count.
class socket_owner_t {
 public:
    /// One end of a connection.
    struct end_t {
        QHostAddress address;
        quint16 port = 0;
    };

    /// The user of the connection's other end. Nothing: no established row with an inode has these
    /// two ends, so nobody can be trusted.
    /// @param _own the end on our side, @param _peer the end that is asked about
    static std::optional<uid_t> of_peer(const end_t& _own, const end_t& _peer);

    /// The one user whose sockets listen where a connection to 127.0.0.1:@p _port could end.
    /// Nothing: nobody listens, or several users do.
    static std::optional<uid_t> of_listener(quint16 _port);

    /// The same in the text of one table, as of /proc/net/tcp or tcp6. Pure.
    static std::optional<uid_t> peer_in(const QByteArray& _table, const end_t& _own,
                                        const end_t& _peer);
    /// Every user with a listening row for the port, each once. Pure.
    static QList<uid_t> listeners_in(const QByteArray& _table, quint16 _port);
};

}  // namespace torlan
