#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QHostAddress>
#include <QList>
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

    /// A socket that listens.
    struct listener_t {
        uid_t user = 0;
        quint64 inode = 0;
    };

    /// Every user whose sockets listen where a connection to 127.0.0.1:@p _port could end, each
    /// once; empty: nobody listens.
    static QList<uid_t> of_listeners(quint16 _port);

    /// Whether a user is the one that this process runs as, or root.
    static bool is_trusted(uid_t _user);

    /// The same in the text of tables, as of /proc/net/tcp or tcp6. Pure.
    static std::optional<uid_t> peer_in(const QByteArray& _table, const end_t& _own,
                                        const end_t& _peer);
    /// Every user with a row that a connection to 127.0.0.1:@p _port could end at, each once: who
    /// listens there, or, when nobody does, on every address. Pure.
    static QList<uid_t> listeners_in(const QByteArray& _table, quint16 _port);
    /// The sockets of these.
    static QList<listener_t> sockets_in(const QByteArray& _table, quint16 _port);
    static QList<listener_t> sockets_of(quint16 _port);
};

}  // namespace torlan
