#include "endpoint/peer_judge_t.h"

#include <sys/socket.h>

#include "endpoint/unix_peer.h"

namespace comunication {

namespace {
const QString stranger = QStringLiteral("Another process than the broker listens on its socket");
}  // namespace

QString peer_judge_t::objection(const QString& _path) const {
    if (expected == 0) {
        return {};
    }
    const auto process = listening_process(_path);
    if (!process) {
        return QStringLiteral("The broker does not listen on its socket");
    }
    return *process == pid_t(expected) ? QString() : stranger;
}

QString peer_judge_t::judge(int _socket) {
    if (expected == 0 || _socket < 0) {
        return {};
    }
    const bool known = process_behind(_socket) == pid_t(expected);
    expected = 0;
    if (known) {
        return {};
    }
    ::shutdown(_socket, SHUT_RDWR);
    return stranger;
}

}  // namespace comunication
