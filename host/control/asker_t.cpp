#include "control/asker_t.h"

#include <QJsonDocument>
#include <chrono>
#include <utility>

#include "base/json_text.h"
#include "control/protocol.h"

namespace control {

namespace {

constexpr std::chrono::seconds patience{10};
/// Bytes that may wait for an asker to read them.
constexpr qint64 most_waiting = 4 * longest_line;

}  // namespace

asker_t::asker_t(int _socket, QObject* _parent) : QObject(_parent), socket(this), limit(this) {
    limit.setSingleShot(true);
    connect(&limit, &QTimer::timeout, this, [this]() {
        socket.abort();
        end();
    });
    connect(&socket, &QLocalSocket::readyRead, this, &asker_t::on_readable);
    connect(&socket, &QLocalSocket::disconnected, this, &asker_t::end);
    socket.setReadBufferSize(longest_question);
    limit.start(patience);
    socket.setSocketDescriptor(_socket, QLocalSocket::ConnectedState, QIODevice::ReadWrite);
}

asker_t::~asker_t() {
    socket.disconnect(this);
}

void asker_t::end() {
    limit.stop();
    if (!std::exchange(has_ended, true)) {
        Q_EMIT gone();
        deleteLater();
    }
}

void asker_t::on_readable() {
    if (has_asked) {
        // Read all the same: the end of a connection shows behind what came before.
        socket.readAll();
        return;
    }
    if (socket.canReadLine()) {
        has_asked = true;
        limit.stop();
        take(socket.readLine());
    } else if (socket.bytesAvailable() >= longest_question) {
        has_asked = true;
        refuse(QStringLiteral("The question is longer than %1 bytes.").arg(longest_question));
    }
}

void asker_t::take(const QByteArray& _line) {
    const QJsonDocument document = QJsonDocument::fromJson(_line);
    if (!document.isObject()) {
        refuse(QStringLiteral("The question is no JSON object."));
        return;
    }
    const QJsonObject question = document.object();
    if (question.value(QLatin1String("version")) != version) {
        refuse(QStringLiteral("The server speaks version %1 of this protocol only.").arg(version));
        return;
    }
    Q_EMIT asked(question);
}

bool asker_t::send(QJsonObject _line) {
    if (socket.state() != QLocalSocket::ConnectedState || socket.bytesToWrite() > most_waiting) {
        return false;
    }
    _line.insert(QStringLiteral("version"), version);
    socket.write(base::json_to_text(_line) + '\n');
    return true;
}

void asker_t::finish() {
    if (!has_ended) {
        limit.start(patience);
        socket.disconnectFromServer();
    }
}

void asker_t::refuse(const QString& _sentence) {
    send({{QStringLiteral("error"), _sentence}});
    finish();
}

}  // namespace control
