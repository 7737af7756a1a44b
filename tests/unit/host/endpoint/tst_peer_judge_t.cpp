#include "endpoint/peer_judge_t.h"

#include <dlfcn.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <cstring>
#include <functional>

#include "endpoint/mosquitto_client_t.h"

using comunication::mosquitto_client_t;
using comunication::peer_judge_t;

namespace {

const QString stranger = QStringLiteral("Another process than the broker listens on its socket");

/// A socket that two child processes share: the first one listens, the second one takes over when
/// it is told, and counts what it hears.
class exchanged_listener_t {
 public:
    explicit exchanged_listener_t(const QString& _path)
        : socket(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, qPrintable(_path), sizeof address.sun_path - 1);
        ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        first = listen_in_a_child(0);
    }
    ~exchanged_listener_t() {
        for (const pid_t child : {first, second}) {
            if (child > 0) {
                ::kill(child, SIGKILL);
                ::waitpid(child, nullptr, 0);
            }
        }
        ::close(socket);
    }
    Q_DISABLE_COPY_MOVE(exchanged_listener_t)

    /// The second one listens from now on, to the connection after @p _skipped others.
    void exchange(int _skipped) { second = listen_in_a_child(_skipped); }

    /// How many bytes the second one was told, 100 and more as 100.
    int told() {
        int status = 0;
        ::waitpid(std::exchange(second, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    pid_t first = 0;
    pid_t second = 0;

 private:
    /// Returns when it listens.
    pid_t listen_in_a_child(int _skipped) {
        int ready[2] = {};
        static_cast<void>(::pipe(ready));
        const pid_t child = ::fork();
        if (child == 0) {
            ::listen(socket, 10);
            static_cast<void>(::write(ready[1], "x", 1));
            _skipped == 0 ? static_cast<void>(::pause()) : hear(_skipped);
        }
        char answer = 0;
        static_cast<void>(::read(ready[0], &answer, 1));
        ::close(ready[0]);
        ::close(ready[1]);
        return child;
    }
    [[noreturn]] void hear(int _skipped) {
        for (int i = 0; i < _skipped; ++i) {
            ::accept(socket, nullptr, nullptr);
        }
        const int connection = ::accept(socket, nullptr, nullptr);
        char buffer[200];
        const ssize_t count = ::read(connection, buffer, sizeof buffer);
        ::_exit(count < 0 ? 0 : int(std::min<ssize_t>(count, 100)));
    }

    const int socket;
};

/// Called before each connection to a unix socket that this process makes, libraries included.
std::function<void()> before_connecting;

comunication::client_settings_t settings(const QString& _path, qint64 _process) {
    comunication::client_settings_t made;
    made.host = _path;
    made.port = 0;
    made.username = "@torlan";
    made.password = "the-hosts-own";
    made.process = _process;
    return made;
}

}  // namespace

extern "C" int connect(int _socket, const sockaddr* _address, socklen_t _size) {
    using connect_t = int (*)(int, const sockaddr*, socklen_t);
    static const auto real = reinterpret_cast<connect_t>(::dlsym(RTLD_NEXT, "connect"));
    if (_address->sa_family == AF_UNIX && before_connecting) {
        before_connecting();
    }
    return real(_socket, _address, _size);
}

class tst_peer_judge_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void connection_of_another_process_is_shut();
    void nobody_expected_is_nobody_judged();
    void what_is_not_there_is_told_apart_from_a_stranger();
    void the_expected_process_is_told_the_password();
    void another_process_is_told_nothing();
    void process_that_comes_between_look_and_connection_is_told_nothing();

 private:
    const QTemporaryDir folder;
    const QString path = folder.filePath("socket");
};

void tst_peer_judge_t::connection_of_another_process_is_shut() {
    QLocalServer server;
    QVERIFY(server.listen(path));
    QLocalSocket socket;
    socket.connectToServer(path);
    QVERIFY(socket.waitForConnected());
    peer_judge_t judge;
    judge.expect(::getpid());
    QVERIFY(judge.is_unjudged());
    QCOMPARE(judge.judge(int(socket.socketDescriptor())), QString());
    QVERIFY(!judge.is_unjudged());
    judge.expect(1);
    QCOMPARE(judge.judge(int(socket.socketDescriptor())), stranger);
    QVERIFY(::send(int(socket.socketDescriptor()), "x", 1, MSG_NOSIGNAL) < 0);
}

void tst_peer_judge_t::nobody_expected_is_nobody_judged() {
    peer_judge_t judge;
    judge.expect(0);
    QVERIFY(!judge.is_unjudged());
    QCOMPARE(judge.objection("/no/such"), QString());
    QCOMPARE(judge.judge(0), QString());
}

void tst_peer_judge_t::what_is_not_there_is_told_apart_from_a_stranger() {
    peer_judge_t judge;
    judge.expect(1);
    QCOMPARE(judge.objection("/no/such"), QString("The broker does not listen on its socket"));
    QLocalServer server;
    QVERIFY(server.listen(path));
    QCOMPARE(judge.objection(path), stranger);
}

void tst_peer_judge_t::the_expected_process_is_told_the_password() {
    QLocalServer server;
    QVERIFY(server.listen(path));
    mosquitto_client_t client;
    client.open(settings(path, ::getpid()));
    QByteArray heard;
    QTRY_VERIFY(server.hasPendingConnections());
    const auto is_told = [&]() {
        while (QLocalSocket* const connection = server.nextPendingConnection()) {
            connection->waitForReadyRead(1'000);
            heard += connection->readAll();
        }
        return heard.contains("the-hosts-own");
    };
    QTRY_VERIFY(is_told());
}

void tst_peer_judge_t::another_process_is_told_nothing() {
    QLocalServer server;
    QVERIFY(server.listen(path));
    mosquitto_client_t client;
    QSignalSpy closed(&client, &mosquitto_client_t::closed);
    client.open(settings(path, 1));
    QCOMPARE(closed.size(), 1);
    QCOMPARE(closed[0][0].toString(), stranger);
    QVERIFY(server.waitForNewConnection(5'000));
    const std::unique_ptr<QLocalSocket> connection(server.nextPendingConnection());
    QVERIFY(connection->waitForDisconnected(5'000) ||
            connection->state() == QLocalSocket::UnconnectedState);
    QCOMPARE(connection->readAll(), QByteArray());
    QVERIFY(!server.waitForNewConnection(0));
}

void tst_peer_judge_t::process_that_comes_between_look_and_connection_is_told_nothing() {
    const QTemporaryDir other;
    exchanged_listener_t listener(other.filePath("socket"));
    int connections = 0;
    before_connecting = [&]() {
        if (++connections == 2) {
            listener.exchange(1);
        }
    };
    mosquitto_client_t client;
    QSignalSpy closed(&client, &mosquitto_client_t::closed);
    client.open(settings(other.filePath("socket"), listener.first));
    before_connecting = nullptr;
    QTRY_COMPARE(closed.size(), 1);
    QCOMPARE(closed[0][0].toString(), stranger);
    QCOMPARE(connections, 2);
    QCOMPARE(listener.told(), 0);
}

QTEST_GUILESS_MAIN(tst_peer_judge_t)
#include "tst_peer_judge_t.moc"
