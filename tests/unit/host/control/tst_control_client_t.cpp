#include "control/control_client_t.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "control/control_place_t.h"
#include "control/protocol.h"
#include "kit/lock_holder.h"

using namespace control;

namespace {

/// Takes what a server of the folder has.
enum part_t { lock_part = 1, socket_part = 2, answers = 4 };

int listening_at(const QString& _folder) {
    const control_place_t place(_folder);
    const sockaddr_un address = place.address();
    const int made = ::socket(AF_UNIX, SOCK_STREAM, 0);
    return ::bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                   ::listen(made, 5) == 0
               ? made
               : -1;
}

}  // namespace

/// With another process as the server, as raw as it can be.
class tst_control_client_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { folder = std::make_unique<QTemporaryDir>(); }

    void folder_without_a_server_has_none() {
        control_client_t client(folder->path());
        QCOMPARE(client.has_server().value, false);
        QCOMPARE(client.ask({}, QDeadlineTimer(1000)).error,
                 QString("no server runs on %1.").arg(folder->path()));
    }

    void answer_comes_line_by_line() {
        const kit::lock_holder_t other(serve(lock_part | socket_part | answers));
        control_client_t client(folder->path());
        QCOMPARE(client.has_server().value, true);
        const QDeadlineTimer limit(5000);
        QVERIFY(client.ask({{"ask", "x"}}, limit).is_ok());
        QCOMPARE(client.next(limit).value.value("n").toInt(), 1);
        QCOMPARE(client.next(limit).error, "No.");
        QVERIFY(!client.is_over());
        QCOMPARE(client.next(limit).error, "the server has closed the connection.");
        QVERIFY(client.is_over());
    }

    void silent_server_is_waited_for_and_named() {
        const kit::lock_holder_t other(serve(lock_part | socket_part));
        control_client_t client(folder->path());
        QElapsedTimer clock;
        clock.start();
        const QDeadlineTimer limit(200);
        QVERIFY(client.ask({}, limit).is_ok());
        const QString error = client.next(limit).error;
        QVERIFY2(error.startsWith(QString("the server, process %1").arg(other.process)),
                 qPrintable(error));
        QVERIFY(clock.elapsed() >= 200);
    }

    void server_that_is_about_to_listen_is_waited_for() {
        const kit::lock_holder_t other(serve(lock_part));
        control_client_t client(folder->path());
        const QString error = client.ask({}, QDeadlineTimer(200)).error;
        QVERIFY2(error.contains("does not answer"), qPrintable(error));
    }

    void who_does_not_hold_the_lock_is_not_believed() {
        const kit::lock_holder_t server(serve(lock_part));
        const kit::lock_holder_t other(serve(socket_part));
        control_client_t client(folder->path());
        QCOMPARE(client.ask({}, QDeadlineTimer(1000)).error,
                 QString("another process than the server listens on the control socket in %1.")
                     .arg(folder->path()));
    }

    void who_is_neither_root_nor_the_owner_is_not_believed() {
        if (::geteuid() != 0) {
            QSKIP("Only root can be somebody else.");
        }
        QVERIFY(QFile::setPermissions(folder->path(), QFileDevice::Permissions(0x7777)));
        const auto serving = serve(socket_part);
        const auto locking = serve(lock_part);
        const kit::lock_holder_t other([&]() {
            locking();
            [[maybe_unused]] const int left = ::seteuid(65534);
            serving();
        });
        control_client_t client(folder->path());
        QVERIFY(client.ask({}, QDeadlineTimer(1000)).error.contains("another process"));
    }

    void question_has_the_version() {
        const kit::lock_holder_t other(serve(lock_part | socket_part | answers));
        control_client_t client(folder->path());
        QVERIFY(client.ask({{"ask", "x"}}, QDeadlineTimer(5000)).is_ok());
        QCOMPARE(client.next(QDeadlineTimer(5000)).value.value("heard").toString(),
                 "{\"ask\":\"x\",\"version\":1}");
    }

 private:
    std::function<void()> serve(int _parts) const {
        return [path = folder->path(), _parts]() {
            if ((_parts & lock_part) != 0) {
                auto* const lock = new process::file_lock_t(path + '/' + lock_name());
                lock->take();
            }
            const int listening = (_parts & socket_part) != 0 ? listening_at(path) : -1;
            if ((_parts & answers) != 0 && ::fork() == 0) {
                answer(listening);
                ::_exit(0);
            }
        };
    }

    /// One question, with two lines.
    static void answer(int _listening) {
        const int connection = ::accept(_listening, nullptr, nullptr);
        char question[100] = {};
        const ssize_t size = ::recv(connection, question, sizeof question, 0);
        const QByteArray heard = QByteArray(question, qsizetype(size)).trimmed();
        const QByteArray lines = "{\"version\":1,\"n\":1,\"heard\":\"" +
                                 QByteArray(heard).replace('"', "\\\"") +
                                 "\"}\n{\"version\":1,\"error\":\"No.\"}\n";
        [[maybe_unused]] const ssize_t sent =
            ::send(connection, lines.constData(), std::size_t(lines.size()), 0);
        ::close(connection);
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_control_client_t)
#include "tst_control_client_t.moc"
