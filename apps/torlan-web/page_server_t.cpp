#include "page_server_t.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>

#include "gate/request_gate_t.h"
#include "page_guard_t.h"
#include "page_headers.h"

namespace torlan {

namespace {

constexpr gate_rules_t rules{.judge = &page_guard_t::judge};

QByteArray answer_of(const QByteArray& _type, const QByteArray& _headers, const QByteArray& _body,
                     bool _with_body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: " + _type +
           "\r\nContent-Length: " + QByteArray::number(_body.size()) + "\r\n" + _headers + "\r\n" +
           (_with_body ? _body : QByteArray());
}

}  // namespace

page_server_t::page_server_t(const QString& _facts, quint16 _ws_port, QObject* _parent)
    : QTcpServer(_parent), facts(_facts), ws_port(_ws_port), headers(page_headers(_ws_port)) {}

base::result_t page_server_t::start(const QString& _pages, quint16 _port) {
    if (const base::result_t read = folder.read(_pages); !read.is_ok()) {
        return read;
    }
    if (!listen(QHostAddress::LocalHost, _port)) {
        return base::result_t::failed(QStringLiteral("cannot listen on 127.0.0.1, port %1: %2")
                                          .arg(QString::number(_port), errorString()));
    }
    return {};
}

void page_server_t::incomingConnection(qintptr _descriptor) {
    auto* const socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(_descriptor)) {
        delete socket;
        return;
    }
    ++connections;
    connect(socket, &QTcpSocket::disconnected, this, [this]() { --connections; });
    auto* const gate = new request_gate_t(socket, rules);
    connect(gate, &request_gate_t::passed, this, &page_server_t::answer);
    if (connections > max_connections) {
        gate->refuse({503, QStringLiteral("Too many connections")});
    }
}

void page_server_t::answer(QTcpSocket* _socket) const {
    const QByteArray whole = _socket->readAll();
    const auto head = request_head_t::parse(whole.left(whole.indexOf("\r\n\r\n") + 2));
    const bool with_body = head->method == "GET";
    if (head->path() == "/console.json") {
        _socket->write(answer_of("application/json", headers, console_json(), with_body));
    } else if (const page_folder_t::file_t* const file = folder.find(head->path())) {
        _socket->write(answer_of(file->type, headers, file->bytes, with_body));
    } else {
        _socket->write(refusal_answer({404, QStringLiteral("There is no such file")}));
    }
}

QByteArray page_server_t::console_json() const {
    QJsonObject told;
    QFile file(facts);
    if (!facts.isEmpty() && file.open(QIODevice::ReadOnly) && file.size() <= max_facts_bytes) {
        told = QJsonDocument::fromJson(file.readAll()).object();
    }
    told.insert(QStringLiteral("ws_port"), ws_port);
    return QJsonDocument(told).toJson(QJsonDocument::Compact);
}

}  // namespace torlan
