#include "kit/raw_mqtt_t.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QTcpSocket>

namespace kit {

namespace {

constexpr int limit = 20'000;

QByteArray number16(quint16 _value) {
    return QByteArray(1, char(_value >> 8)) + QByteArray(1, char(_value & 0xff));
}

QByteArray number32(quint32 _value) {
    return number16(quint16(_value >> 16)) + number16(quint16(_value & 0xffff));
}

QByteArray text(const QByteArray& _text) {
    return number16(quint16(_text.size())) + _text;
}

QByteArray length(qsizetype _size) {
    QByteArray made;
    do {
        made.append(char((_size & 0x7f) | (_size > 0x7f ? 0x80 : 0)));
        _size >>= 7;
    } while (_size > 0);
    return made;
}

/// 0 behind the end.
quint8 read8(const QByteArray& _from, qsizetype _at) {
    return _at < _from.size() ? quint8(_from[_at]) : quint8(0);
}

quint16 read16(const QByteArray& _from, qsizetype _at) {
    return quint16(read8(_from, _at) << 8 | read8(_from, _at + 1));
}

}  // namespace

raw_mqtt_t::raw_mqtt_t(way_t _way, const QString& _where) : way(_way) {
    if (way == way_t::local) {
        auto made = std::make_unique<QLocalSocket>();
        made->connectToServer(_where);
        made->waitForConnected(limit);
        socket = std::move(made);
        return;
    }
    auto made = std::make_unique<QTcpSocket>();
    made->connectToHost(QStringLiteral("127.0.0.1"), _where.toUShort());
    made->waitForConnected(limit);
    socket = std::move(made);
    if (way == way_t::websockets) {
        upgrade();
    }
}

raw_mqtt_t::~raw_mqtt_t() = default;

bool raw_mqtt_t::is_open() const {
    return socket->isOpen();
}

void raw_mqtt_t::upgrade() {
    socket->write(
        "GET /mqtt HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
        "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n"
        "Sec-WebSocket-Protocol: mqtt\r\n\r\n");
    qsizetype end = -1;
    while (end < 0 && socket->waitForReadyRead(limit)) {
        raw += socket->readAll();
        end = raw.indexOf("\r\n\r\n");
    }
    raw.remove(0, end + 4);
}

/// The mask that clients must use may be zero.
QByteArray raw_mqtt_t::frame(const QByteArray& _packet) const {
    QByteArray made("\x82");
    if (_packet.size() < 126) {
        made += char(0x80 | _packet.size());
    } else {
        made += QByteArray(1, char(0x80 | 127)) + number32(0) + number32(quint32(_packet.size()));
    }
    return made + QByteArray(4, '\0') + _packet;
}

bool raw_mqtt_t::write_packet(int _head, const QByteArray& _body) {
    const QByteArray packet = QByteArray(1, char(_head)) + length(_body.size()) + _body;
    socket->write(way == way_t::websockets ? frame(packet) : packet);
    while (socket->bytesToWrite() > 0) {
        if (!socket->waitForBytesWritten(limit)) {
            return false;
        }
    }
    return true;
}

bool raw_mqtt_t::fill(qsizetype _size) {
    while (buffer.size() < _size) {
        if (way != way_t::websockets) {
            if (socket->bytesAvailable() == 0 && !socket->waitForReadyRead(limit)) {
                return false;
            }
            buffer += socket->readAll();
            continue;
        }
        raw += socket->readAll();
        // Frames of a server have no mask.
        const qsizetype small = raw.size() < 2 ? -1 : quint8(raw[1]) & 0x7f;
        const qsizetype head = small == 126 ? 4 : 2;
        const qsizetype size = small == 126 ? read16(raw, 2) : small;
        if (small >= 0 && raw.size() >= head + size) {
            if ((raw[0] & 0x0f) == 0x08) {
                return false;
            }
            buffer += raw.mid(head, size);
            raw.remove(0, head + size);
        } else if (!socket->waitForReadyRead(limit)) {
            return false;
        }
    }
    return true;
}

raw_mqtt_t::packet_t raw_mqtt_t::read_packet() {
    qsizetype size = 0;
    int used = 1;
    do {
        if (!fill(used + 1)) {
            return {};
        }
        size |= qsizetype(buffer[used] & 0x7f) << 7 * (used - 1);
    } while ((buffer[used++] & 0x80) != 0);
    if (!fill(used + size)) {
        return {};
    }
    const packet_t packet{quint8(buffer[0]) >> 4, buffer[0] & 0x0f, buffer.mid(used, size)};
    buffer.remove(0, used + size);
    return packet;
}

raw_mqtt_t::packet_t raw_mqtt_t::wait_for(int _type) {
    while (true) {
        const packet_t packet = read_packet();
        if (packet.type == _type || packet.type == 0) {
            return packet;
        }
        take(packet);
    }
}

void raw_mqtt_t::take(const packet_t& _packet) {
    if (_packet.type == 3) {
        take_message(_packet);
    } else if (_packet.type == 6 && acknowledges) {
        acknowledge(0x70, read16(_packet.body, 0));
    }
}

void raw_mqtt_t::take_message(const packet_t& _packet) {
    const int qos = _packet.flags >> 1 & 3;
    const quint16 size = read16(_packet.body, 0);
    qsizetype at = 2 + size;
    const quint16 id = qos > 0 ? read16(_packet.body, at) : 0;
    at += qos > 0 ? 2 : 0;
    if (version == 5) {
        at += 1 + read8(_packet.body, at);
    }
    messages.append(
        {_packet.body.mid(2, size), _packet.body.mid(at), qos, (_packet.flags & 1) != 0});
    if (qos > 0 && acknowledges) {
        acknowledge(qos == 1 ? 0x40 : 0x50, id);
    }
}

void raw_mqtt_t::acknowledge(int _head, quint16 _id) {
    write_packet(_head, number16(_id));
}

int raw_mqtt_t::connect(const raw_connect_t& _as) {
    version = _as.version;
    const raw_will_t& will = _as.will;
    const bool has_will = !will.topic.isEmpty();
    int flags = _as.clean ? 0x02 : 0;
    flags |= has_will ? 0x04 | will.qos << 3 | (will.retain ? 0x20 : 0) : 0;
    flags |= _as.name.isEmpty() ? 0 : 0x80;
    flags |= _as.password.isNull() ? 0 : 0x40;
    QByteArray body = text(version == 3 ? "MQIsdp" : "MQTT");
    body += char(version);
    body += char(flags);
    body += number16(60);
    if (version == 5) {
        QByteArray properties = "\x11" + number32(_as.expiry);
        properties +=
            _as.receive_maximum == 0 ? QByteArray() : "\x21" + number16(_as.receive_maximum);
        properties += _as.auth_method.isEmpty() ? QByteArray() : "\x15" + text(_as.auth_method);
        body += length(properties.size()) + properties;
    }
    body += text(_as.id);
    if (has_will) {
        body += version != 5      ? QByteArray()
                : will.delay == 0 ? QByteArray(1, '\0')
                                  : QByteArray(1, '\x05') + "\x18" + number32(will.delay);
        body += text(will.topic) + text(will.payload);
    }
    body += _as.name.isEmpty() ? QByteArray() : text(_as.name);
    body += _as.password.isNull() ? QByteArray() : text(_as.password);
    write_packet(0x10, body);
    const packet_t answer = wait_for(2);
    session_present = answer.type != 0 && (read8(answer.body, 0) & 1) != 0;
    return answer.type == 0 ? closed : read8(answer.body, 1);
}

int raw_mqtt_t::subscribe(const QByteArray& _filter, int _qos) {
    write_packet(0x82, number16(++last_id) + (version == 5 ? QByteArray(1, '\0') : QByteArray()) +
                           text(_filter) + char(_qos));
    const packet_t answer = wait_for(9);
    return answer.type == 0 ? closed : read8(answer.body, answer.body.size() - 1);
}

int raw_mqtt_t::publish(const QByteArray& _topic, const QByteArray& _payload, int _qos,
                        bool _retain) {
    const quint16 id = _qos > 0 ? ++last_id : quint16(0);
    write_packet(0x30 | _qos << 1 | (_retain ? 1 : 0),
                 text(_topic) + (_qos > 0 ? number16(id) : QByteArray()) +
                     (version == 5 ? QByteArray(1, '\0') : QByteArray()) + _payload);
    if (_qos == 0) {
        return 0;
    }
    const packet_t first = wait_for(_qos == 1 ? 4 : 5);
    const int code = first.type == 0 ? closed : read8(first.body, 2);
    if (_qos == 2 && code >= 0 && code < 128) {
        write_packet(0x62, number16(id));
        wait_for(7);
    }
    return code;
}

void raw_mqtt_t::disconnect() {
    write_packet(0xe0, {});
    wait_for(-1);
}

void raw_mqtt_t::vanish() {
    if (auto* const tcp = qobject_cast<QTcpSocket*>(socket.get())) {
        tcp->abort();
    } else if (auto* const local = qobject_cast<QLocalSocket*>(socket.get())) {
        local->abort();
    }
}

bool raw_mqtt_t::wait_for_message(const std::function<bool(const raw_message_t&)>& _fits) {
    const QDeadlineTimer deadline(limit);
    qsizetype looked_at = 0;
    while (!deadline.hasExpired()) {
        for (; looked_at < messages.size(); ++looked_at) {
            if (_fits(messages[looked_at])) {
                return true;
            }
        }
        const packet_t packet = read_packet();
        if (packet.type == 0) {
            return false;
        }
        take(packet);
    }
    return false;
}

QList<QByteArray> raw_mqtt_t::payloads_until(const QByteArray& _topic, const QByteArray& _fence) {
    QList<QByteArray> found;
    const bool met = wait_for_message([&](const raw_message_t& _message) {
        const bool is_fence = _message.topic == _topic && _message.payload == _fence;
        if (_message.topic == _topic && !is_fence) {
            found.append(_message.payload);
        }
        return is_fence;
    });
    return met ? found : found + QList<QByteArray>{"the fence did not come"};
}

const QList<raw_message_t>& raw_mqtt_t::received() {
    is_alive();
    return messages;
}

bool raw_mqtt_t::is_closed() {
    const QDeadlineTimer deadline(limit);
    wait_for(-1);
    return !deadline.hasExpired();
}

bool raw_mqtt_t::is_alive() {
    return write_packet(0xc0, {}) && wait_for(13).type == 13;
}

}  // namespace kit
