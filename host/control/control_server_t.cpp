#include "control/control_server_t.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <cerrno>
#include <chrono>
#include <utility>

#include "control/protocol.h"
#include "process/socket_peer.h"

namespace control {

using base::result_t;

namespace {

constexpr std::chrono::seconds pause_without_descriptors{1};

}  // namespace

control_server_t::control_server_t(QObject* _parent) : QObject(_parent), pause(this) {
    pause.setSingleShot(true);
    pause.setInterval(pause_without_descriptors);
    connect(&pause, &QTimer::timeout, this, [this]() {
        if (notifier) {
            notifier->setEnabled(true);
        }
    });
}

control_server_t::~control_server_t() {
    close();
}

void control_server_t::set_answer(const QString& _word, answer_t _answer) {
    answers.insert(_word, std::move(_answer));
}

result_t control_server_t::open(const QString& _folder) {
    close();
    place = std::make_unique<control_place_t>(_folder);
    result_t listens = place->owner() ? listen() : result_t::failed(qt_error_string(errno));
    if (!listens.is_ok()) {
        close();
        return result_t::failed(QStringLiteral("The control socket in %1 cannot be made: %2.")
                                    .arg(_folder, listens.error));
    }
    notifier = std::make_unique<QSocketNotifier>(listening, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &control_server_t::on_connection);
    return {};
}

result_t control_server_t::listen() {
    listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = place->address();
    // The mode is the socket's from its first moment: nobody else finds it open.
    if (listening < 0 || ::fchmod(listening, 0600) != 0 || !place->remove() ||
        ::bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listening, most_askers) != 0) {
        return result_t::failed(qt_error_string(errno));
    }
    place->give_to_owner();
    return {};
}

void control_server_t::close() {
    notifier.reset();
    pause.stop();
    for (asker_t* const asker : findChildren<asker_t*>(QString(), Qt::FindDirectChildrenOnly)) {
        delete asker;
    }
    askers = 0;
    if (listening >= 0) {
        static_cast<void>(place->remove());
        ::close(std::exchange(listening, -1));
    }
    place.reset();
}

void control_server_t::on_connection() {
    for (int taken = 0; taken < most_askers; ++taken) {
        const int connection = ::accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (connection < 0) {
            if (errno == EMFILE || errno == ENFILE) {
                notifier->setEnabled(false);
                pause.start();
            }
            return;
        }
        take(connection);
    }
}

void control_server_t::take(int _connection) {
    const auto peer = process::peer_of(_connection);
    if (!peer || (peer->user != 0 && peer->user != *place->owner()) || askers >= most_askers) {
        ::close(_connection);
        return;
    }
    auto* const asker = new asker_t(_connection, this);
    ++askers;
    connect(asker, &asker_t::asked, this,
            [this, asker](const QJsonObject& _question) { on_asked(asker, _question); });
    connect(asker, &asker_t::gone, this, [this]() { --askers; });
}

void control_server_t::on_asked(asker_t* _asker, const QJsonObject& _question) {
    const auto answer = answers.constFind(_question.value(QLatin1String("ask")).toString());
    if (answer == answers.constEnd()) {
        _asker->refuse(QStringLiteral("The server does not know this question."));
        return;
    }
    (*answer)(_asker, _question);
}

}  // namespace control
