#include "kit/http_server_t.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace kit {

namespace {

/// How long the body is that a head announces.
qsizetype length_of(const QByteArray& _head) {
    const QByteArray head = _head.toLower() + "\r\n";
    const qsizetype name = head.indexOf("\r\ncontent-length:");
    const qsizetype value = name + 17;
    return name < 0 ? 0 : head.mid(value, head.indexOf("\r\n", value) - value).trimmed().toInt();
}

/// Takes a whole request from the front of what has come; false: more has to come.
bool take(QByteArray* _received, http_server_t::request_t* _request) {
    const qsizetype end = _received->indexOf("\r\n\r\n");
    const QByteArray head = _received->left(end);
    const qsizetype length = length_of(head);
    if (end < 0 || _received->size() < end + 4 + length) {
        return false;
    }
    const QByteArrayList line = head.split('\r').first().split(' ');
    *_request = {line.value(0), line.value(1), head, _received->mid(end + 4, length)};
    _received->remove(0, end + 4 + length);
    return true;
}

bool send_all(int _peer, const QByteArray& _bytes) {
    for (qsizetype sent = 0; sent < _bytes.size();) {
        const ssize_t part = send(_peer, _bytes.constData() + sent,
                                  static_cast<size_t>(_bytes.size() - sent), MSG_NOSIGNAL);
        if (part < 0) {
            return false;
        }
        sent += part;
    }
    return true;
}

}  // namespace

http_server_t::answer_t http_server_t::json(const QByteArray& _body, const QByteArray& _status) {
    return {"HTTP/1.1 " + _status + "\r\nContent-Type: application/json\r\nContent-Length: " +
            QByteArray::number(_body.size()) + "\r\n\r\n" + _body};
}

http_server_t::http_server_t(const answer_t& _answer)
    : http_server_t([_answer](const request_t&) { return _answer; }) {}

http_server_t::http_server_t(script_t _script)
    : script(std::move(_script)), listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, any, size) != 0 || listen(listener, 16) != 0 ||
        getsockname(listener, any, &size) != 0) {
        qFatal("the test's HTTP server cannot listen");
    }
    listening_port = ntohs(address.sin_port);
    acceptor = std::thread([this]() { accept_all(); });
}

http_server_t::~http_server_t() {
    shutdown(listener, SHUT_RDWR);
    acceptor.join();
    close(listener);
    for (const int peer : peers) {
        shutdown(peer, SHUT_RDWR);
    }
    for (std::thread& server : servers) {
        server.join();
    }
    for (const int peer : peers) {
        close(peer);
    }
}

QList<http_server_t::request_t> http_server_t::requests() const {
    const std::lock_guard locker(mutex);
    return received;
}

void http_server_t::accept_all() {
    for (int peer = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC); peer >= 0;
         peer = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC)) {
        peers.push_back(peer);
        servers.emplace_back([this, peer]() { serve(peer); });
    }
}

void http_server_t::serve(int _peer) {
    QByteArray bytes;
    char part[4096];
    for (ssize_t size = recv(_peer, part, sizeof(part), 0); size > 0;
         size = recv(_peer, part, sizeof(part), 0)) {
        bytes.append(part, size);
        request_t request;
        while (take(&bytes, &request)) {
            answer(_peer, request);
        }
    }
}

void http_server_t::answer(int _peer, const request_t& _request) {
    {
        const std::lock_guard locker(mutex);
        received.append(_request);
    }
    const answer_t answer = script(_request);
    const bool sent = answer.drip_ms > 0 ? drip(_peer, answer) : send_all(_peer, answer.bytes);
    if (!sent || answer.closes) {
        shutdown(_peer, SHUT_RDWR);
    }
}

bool http_server_t::drip(int _peer, const answer_t& _answer) const {
    for (const char byte : _answer.bytes) {
        pollfd hung_up{_peer, POLLRDHUP, 0};
        if (!send_all(_peer, QByteArray(1, byte)) || poll(&hung_up, 1, _answer.drip_ms) != 0) {
            return false;
        }
    }
    return true;
}

}  // namespace kit
