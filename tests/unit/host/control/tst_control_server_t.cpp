#include "control/control_server_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>

#include "control/protocol.h"

using namespace control;

/// A tool's side of a connection, as raw as it can be.
class caller_t {
 public:
    explicit caller_t(const QString& _folder) {
        const control_place_t place(_folder);
        const sockaddr_un address = place.address();
        descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        is_connected =
            ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        if (is_connected) {
            socket.setSocketDescriptor(descriptor);
        } else {
            ::close(descriptor);
        }
    }

    QByteArray ask(const QByteArray& _line) {
        socket.write(_line);
        return answer();
    }
    /// All until the end.
    QByteArray answer() {
        QByteArray all;
        const auto is_over = [&]() {
            all += socket.readAll();
            return socket.state() == QLocalSocket::UnconnectedState;
        };
        return QTest::qWaitFor(is_over) ? all + socket.readAll() : "no end";
    }

    int descriptor = -1;
    bool is_connected = false;
    QLocalSocket socket;
};

class tst_control_server_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        server = std::make_unique<control_server_t>();
        server->set_answer(QStringLiteral("twice"),
                           [](asker_t* _asker, const QJsonObject& _question) {
                               _asker->send({{"heard", _question.value("word")}});
                               _asker->send({{"heard", _question.value("word")}});
                               _asker->finish();
                           });
        server->set_answer(QStringLiteral("never"),
                           [this](asker_t* _asker, const QJsonObject&) { kept = _asker; });
        QVERIFY(server->open(folder->path()).is_ok());
    }
    void cleanup() { server.reset(); }

    void question_is_answered_line_by_line() {
        QCOMPARE(caller_t(folder->path()).ask("{\"version\":1,\"ask\":\"twice\",\"word\":7}\n"),
                 "{\"heard\":7,\"version\":1}\n{\"heard\":7,\"version\":1}\n");
    }

    void what_is_no_question_is_refused_data() {
        QTest::addColumn<QByteArray>("question");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char* _name, const QByteArray& _question, const char* _answer) {
            QTest::newRow(_name) << _question << QByteArray(_answer);
        };
        row("no JSON", "hello\n", "The question is no JSON object.");
        row("a list", "[1]\n", "The question is no JSON object.");
        row("no version", "{\"ask\":\"twice\"}\n",
            "The server speaks version 1 of this protocol only.");
        row("a later version", "{\"version\":2,\"ask\":\"twice\"}\n",
            "The server speaks version 1 of this protocol only.");
        row("unknown", "{\"version\":1,\"ask\":\"thrice\"}\n",
            "The server does not know this question.");
        row("too long", QByteArray(longest_question, 'x'),
            "The question is longer than 4096 bytes.");
    }
    void what_is_no_question_is_refused() {
        QFETCH(QByteArray, question);
        QFETCH(QByteArray, answer);
        QCOMPARE(caller_t(folder->path()).ask(question),
                 "{\"error\":\"" + answer + "\",\"version\":1}\n");
    }

    void socket_is_its_owners_only() {
        struct stat status = {};
        QCOMPARE(::lstat(qPrintable(folder->filePath("control.sock")), &status), 0);
        QVERIFY(S_ISSOCK(status.st_mode));
        QCOMPARE(status.st_mode & 07777, mode_t(0600));
    }

    // Twice: by the socket's mode, and where that was changed.
    void stranger_is_turned_away() {
        if (::geteuid() != 0) {
            QSKIP("Only root can be somebody else.");
        }
        QVERIFY(QFile::setPermissions(folder->path(), QFileDevice::Permissions(0x7755)));
        QVERIFY(!as_stranger()->is_connected);
        QCOMPARE(::chmod(qPrintable(folder->filePath("control.sock")), 0666), 0);
        const auto stranger = as_stranger();
        QVERIFY(stranger->is_connected);
        QCOMPARE(stranger->ask("{\"version\":1,\"ask\":\"twice\"}\n"), QByteArray());
    }

    void owner_of_the_folder_comes_in_where_root_serves() {
        if (::geteuid() != 0) {
            QSKIP("Only root can be somebody else.");
        }
        QVERIFY(QFile::setPermissions(folder->path(), QFileDevice::Permissions(0x7755)));
        QCOMPARE(::chown(qPrintable(folder->path()), 65534, gid_t(-1)), 0);
        QVERIFY(server->open(folder->path()).is_ok());
        QVERIFY(as_stranger()->ask("{\"version\":1,\"ask\":\"twice\"}\n").contains("version"));
        QVERIFY(caller_t(folder->path())
                    .ask("{\"version\":1,\"ask\":\"twice\"}\n")
                    .contains("version"));
    }

    void path_may_have_any_length() {
        const QString deep = folder->filePath(QString(200, u'd') + u'/' + QString(200, u'e'));
        QVERIFY(QDir().mkpath(deep));
        control_server_t other;
        other.set_answer(QStringLiteral("x"), [](asker_t* _asker, const QJsonObject&) {
            _asker->send({});
            _asker->finish();
        });
        QVERIFY(other.open(deep).is_ok());
        QVERIFY(QFile::exists(deep + "/control.sock"));
        QCOMPARE(caller_t(deep).ask("{\"version\":1,\"ask\":\"x\"}\n"), "{\"version\":1}\n");
    }

    void socket_of_a_killed_server_gives_way() {
        server->close();
        QVERIFY(!QFile::exists(folder->filePath("control.sock")));
        QFile left(folder->filePath("control.sock"));
        QVERIFY(left.open(QIODevice::WriteOnly));
        QVERIFY(server->open(folder->path()).is_ok());
        QVERIFY(caller_t(folder->path()).is_connected);
    }

    void what_cannot_be_made_is_told() {
        server->close();
        QVERIFY(QDir(folder->path()).mkdir("control.sock"));
        const base::result_t opened = server->open(folder->path());
        QVERIFY2(opened.error.contains("The control socket in " + folder->path()),
                 qPrintable(opened.error));
        QVERIFY(!server->open(folder->filePath("none")).is_ok());
    }

    void no_more_than_sixteen_ask_at_a_time() {
        std::vector<std::unique_ptr<caller_t>> callers;
        for (int i = 0; i < control_server_t::most_askers; ++i) {
            callers.push_back(std::make_unique<caller_t>(folder->path()));
        }
        caller_t more(folder->path());
        QCOMPARE(more.answer(), QByteArray());
        QCOMPARE(callers.back()->socket.state(), QLocalSocket::ConnectedState);
        callers.pop_back();
        QTRY_VERIFY(caller_t(folder->path()).ask("{\"version\":1,\"ask\":\"twice\"}\n").size() > 0);
    }

    void who_says_nothing_is_sent_away() {
        caller_t caller(folder->path());
        QTRY_VERIFY(server->findChild<asker_t*>() != nullptr);
        auto* const limit = server->findChild<asker_t*>()->findChild<QTimer*>();
        QCOMPARE(limit->interval(), 10'000);
        limit->start(0);
        QCOMPARE(caller.answer(), QByteArray());
    }

    // Half a line more, while the answer is on its way.
    void who_asked_is_not_sent_away_and_is_missed_when_gone() {
        auto caller = std::make_unique<caller_t>(folder->path());
        caller->socket.write("{\"version\":1,\"ask\":\"never\"}\n" + QByteArray(10'000, 'x'));
        QTRY_VERIFY(kept);
        QVERIFY(!kept->findChild<QTimer*>()->isActive());
        caller.reset();
        QTRY_VERIFY(!kept);
    }

    void slow_reader_loses_lines_and_holds_nobody() {
        caller_t caller(folder->path());
        caller.socket.setReadBufferSize(1);
        caller.socket.write("{\"version\":1,\"ask\":\"never\"}\n");
        QTRY_VERIFY(kept);
        const QJsonObject line{{"text", QString(100'000, u'x')}};
        int taken = 0;
        while (kept->send(line) && taken < 1000) {
            ++taken;
        }
        QVERIFY2(taken > 40 && taken < 60, qPrintable(QString::number(taken)));
        kept->finish();
        QVERIFY(kept->findChild<QTimer*>()->isActive());
    }

 private:
    std::unique_ptr<caller_t> as_stranger() const {
        [[maybe_unused]] const int left = ::seteuid(65534);
        auto caller = std::make_unique<caller_t>(folder->path());
        [[maybe_unused]] const int back = ::seteuid(0);
        return caller;
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<control_server_t> server;
    QPointer<asker_t> kept;
};

QTEST_GUILESS_MAIN(tst_control_server_t)
#include "tst_control_server_t.moc"
