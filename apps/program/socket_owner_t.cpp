#include "program/socket_owner_t.h"

#include <unistd.h>

#include <QFile>
#include <QtEndian>
#include <cstring>

namespace torlan {

namespace {

constexpr int established = 0x01;
constexpr int listening = 0x0a;

/// A row of /proc/net/tcp or tcp6.
struct row_t {
    socket_owner_t::end_t local;
    socket_owner_t::end_t remote;
    int state = 0;
    uid_t user = 0;
    quint64 inode = 0;
};

/// "0100007F": each word of four bytes as the machine holds it, the bytes in the network's order.
std::optional<QHostAddress> parse_address(const QByteArray& _hex) {
    const QByteArray bytes = QByteArray::fromHex(_hex);
    if (bytes.size() * 2 != _hex.size() || (bytes.size() != 4 && bytes.size() != 16)) {
        return std::nullopt;
    }
    Q_IPV6ADDR network = {};
    for (qsizetype word = 0; word < bytes.size(); word += 4) {
        const quint32 value = qFromBigEndian<quint32>(bytes.constData() + word);
        std::memcpy(&network[int(word)], &value, sizeof value);
    }
    if (bytes.size() == 4) {
        return QHostAddress(qFromBigEndian<quint32>(&network[0]));
    }
    // A socket of version 6 that talks version 4 (::ffff:a.b.c.d). Not QHostAddress's conversion:
    // it takes ::1 for 127.0.0.1, and those are two places.
    static constexpr quint8 mapped[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};
    return std::memcmp(&network, mapped, sizeof mapped) == 0
               ? QHostAddress(qFromBigEndian<quint32>(&network[12]))
               : QHostAddress(network);
}

std::optional<socket_owner_t::end_t> parse_end(const QByteArray& _text) {
    const qsizetype colon = _text.indexOf(':');
    const auto address = parse_address(_text.left(colon));
    bool is_port = false;
    const quint16 port = _text.mid(colon + 1).toUShort(&is_port, 16);
    if (colon < 0 || !address || !is_port) {
        return std::nullopt;
    }
    return socket_owner_t::end_t{*address, port};
}

std::optional<row_t> parse_row(const QByteArray& _line) {
    enum column_t { local = 1, remote = 2, state = 3, user = 7, inode = 9, columns };
    const QList<QByteArray> words = _line.simplified().split(' ');
    if (words.size() < columns) {
        return std::nullopt;
    }
    const auto own = parse_end(words[local]);
    const auto other = parse_end(words[remote]);
    bool is_state = false;
    bool is_user = false;
    bool is_inode = false;
    const row_t row{own.value_or(socket_owner_t::end_t()), other.value_or(socket_owner_t::end_t()),
                    words[state].toInt(&is_state, 16), words[user].toUInt(&is_user),
                    words[inode].toULongLong(&is_inode)};
    return own && other && is_state && is_user && is_inode ? std::optional(row) : std::nullopt;
}

/// Calls @p _visit for each row of a local port; the others, a machine may have many, are not taken
/// apart.
template <class visit_t>
void each_row(const QByteArray& _table, quint16 _port, const visit_t& _visit) {
    const QByteArray mark =
        ':' + QByteArray::number(_port, 16).rightJustified(4, '0').toUpper() + ' ';
    for (qsizetype at = _table.indexOf(mark); at >= 0;) {
        const qsizetype begin = _table.lastIndexOf('\n', at) + 1;
        const qsizetype end = _table.indexOf('\n', at);
        const QByteArray line = _table.mid(begin, end < 0 ? -1 : end - begin);
        if (const auto row = parse_row(line); row && row->local.port == _port) {
            _visit(*row);
        }
        at = end < 0 ? -1 : _table.indexOf(mark, end);
    }
}

bool is_same(const socket_owner_t::end_t& _one, const socket_owner_t::end_t& _other) {
    return _one.port == _other.port && _one.address == _other.address;
}

/// What the kernel shows now; empty when there is no such table.
QByteArray read_table(const char* _path) {
    QFile file(QString::fromLatin1(_path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QByteArray> tables() {
    return {read_table("/proc/self/net/tcp"), read_table("/proc/self/net/tcp6")};
}

}  // namespace

std::optional<uid_t> socket_owner_t::peer_in(const QByteArray& _table, const end_t& _own,
                                             const end_t& _peer) {
    std::optional<uid_t> found;
    each_row(_table, _peer.port, [&](const row_t& _row) {
        if (_row.state == established && _row.inode != 0 && is_same(_row.local, _peer) &&
            is_same(_row.remote, _own)) {
            found = _row.user;
        }
    });
    return found;
}

QList<socket_owner_t::listener_t> socket_owner_t::sockets_in(const QByteArray& _table,
                                                             quint16 _port) {
    QList<listener_t> exact;
    QList<listener_t> any;
    each_row(_table, _port, [&](const row_t& _row) {
        const QHostAddress& address = _row.local.address;
        const bool is_any = address == QHostAddress::AnyIPv4 || address == QHostAddress::AnyIPv6;
        if (_row.state == listening && (is_any || address == QHostAddress::LocalHost)) {
            (is_any ? any : exact).append({_row.user, _row.inode});
        }
    });
    return exact.isEmpty() ? any : exact;
}

QList<uid_t> socket_owner_t::listeners_in(const QByteArray& _table, quint16 _port) {
    QList<uid_t> users;
    for (const listener_t& socket : sockets_in(_table, _port)) {
        if (!users.contains(socket.user)) {
            users.append(socket.user);
        }
    }
    return users;
}

std::optional<uid_t> socket_owner_t::of_peer(const end_t& _own, const end_t& _peer) {
    for (const QByteArray& table : tables()) {
        if (const auto user = peer_in(table, _own, _peer)) {
            return user;
        }
    }
    return std::nullopt;
}

QList<uid_t> socket_owner_t::of_listeners(quint16 _port) {
    return listeners_in(tables().join(), _port);
}

QList<socket_owner_t::listener_t> socket_owner_t::sockets_of(quint16 _port) {
    return sockets_in(tables().join(), _port);
}

bool socket_owner_t::is_trusted(uid_t _user) {
    return _user == 0 || _user == ::geteuid();
}

}  // namespace torlan
