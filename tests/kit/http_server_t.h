#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace kit {

/// An HTTP server on a loopback port that the system gives, with threads of its own: the clients
/// that are tested against it block. It answers whatever bytes it is told, well-formed or not, and
/// keeps what it was sent. Plain sockets and standard threads: the thread sanitizer cannot see Qt's
/// own synchronisation.
class http_server_t {
 public:
    struct request_t {
        QByteArray method;
        QByteArray target;  ///< as sent
        QByteArray head;    ///< request line and headers
        QByteArray body;
    };
    struct answer_t {
        QByteArray bytes;
        bool closes = true;  ///< false: the connection stays open after the bytes
        int drip_ms = 0;     ///< > 0: one byte each so many milliseconds
    };
    /// Called on a thread of the server, once per whole request.
    using script_t = std::function<answer_t(const request_t&)>;

    /// An answer as it should be.
    static answer_t json(const QByteArray& _body, const QByteArray& _status = "200 OK");
    /// Takes the request and never says anything.
    static answer_t silence() { return {{}, false}; }

    explicit http_server_t(script_t _script);
    explicit http_server_t(const answer_t& _answer);
    ~http_server_t();
    http_server_t(const http_server_t&) = delete;
    http_server_t& operator=(const http_server_t&) = delete;

    quint16 port() const { return listening_port; }
    /// "http://127.0.0.1:PORT/"
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/").arg(listening_port); }
    QList<request_t> requests() const;

 private:
    void accept_all();
    void serve(int _peer);
    void answer(int _peer, const request_t& _request);
    bool drip(int _peer, const answer_t& _answer) const;

    const script_t script;
    const int listener;
    quint16 listening_port = 0;
    mutable std::mutex mutex;  ///< guards received
    QList<request_t> received;
    std::vector<int> peers;            ///< acceptor's; closed at the end
    std::vector<std::thread> servers;  ///< acceptor's; one a connection
    std::thread acceptor;
};

}  // namespace kit
