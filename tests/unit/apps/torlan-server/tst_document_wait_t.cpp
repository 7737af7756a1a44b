#include "document_wait_t.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <memory>
#include <utility>

#include "http/http_t.h"
#include "kit/http_server_t.h"
#include "utility/cnfserver.h"

using kit::http_server_t;
using torlan::document_wait_t;

class tst_document_wait_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void an_answer_is_the_document() {
        serve(http_server_t::json(R"({"a": 1})"));
        document_wait_t wait(port(), 0);
        QSignalSpy waiting(&wait, &document_wait_t::waiting);
        const auto result = wait.run();
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value, (QJsonObject{{"a", 1}}));
        QCOMPARE(waiting.size(), 0);
    }

    void no_answer_in_time_is_one_sentence_and_the_wait_is_told_once() {
        serve(nothing_yet());
        document_wait_t wait(port(), 1);
        QSignalSpy waiting(&wait, &document_wait_t::waiting);
        QElapsedTimer clock;
        clock.start();
        const QString error = wait.run().error;
        QVERIFY(clock.elapsed() >= 1000);
        QVERIFY2(error.contains("within 1 s") && error.contains("503"), qPrintable(error));
        QCOMPARE(waiting.size(), 1);
        QCOMPARE(waiting[0][0].toString(),
                 "waiting up to 1 s for the configuration server at " + address());
        QVERIFY(server->requests().size() > 1);
    }

    void without_patience_one_question_is_put() {
        serve(nothing_yet());
        QVERIFY(!document_wait_t(port(), 0).run().is_ok());
        QCOMPARE(server->requests().size(), 1);
    }

    void an_answer_after_a_while_is_good() {
        std::atomic<int> questions = 0;
        server = std::make_unique<http_server_t>([&questions](const auto&) {
            return ++questions < 3 ? nothing_yet() : http_server_t::json(R"({"a": 1})");
        });
        QVERIFY(http_t::map_base(utility::cnfserver::base, server->port()));
        QCOMPARE(document_wait_t(port(), 60).run().value, (QJsonObject{{"a", 1}}));
    }

    void a_stranger_on_the_port_is_asked_nothing() {
        if (::geteuid() != 0) {
            QSKIP("only root can become another user");
        }
        const quint16 taken = bind_as(65534);
        QCOMPARE(::listen(descriptor, 1), 0);
        QVERIFY(http_t::map_base(utility::cnfserver::base, taken));
        const QString error = document_wait_t(taken, 3600).run().error;
        QCOMPARE(error, QStringLiteral("Port %1 of 127.0.0.1, where the configuration server "
                                       "should be, is held by user 65534, who is not trusted with "
                                       "the settings.")
                            .arg(taken));
        pollfd someone{descriptor, POLLIN, 0};
        QCOMPARE(::poll(&someone, 1, 0), 0);
    }

    void a_stranger_who_takes_the_port_meanwhile_is_not_believed() {
        if (::geteuid() != 0) {
            QSKIP("only root can become another user");
        }
        const quint16 taken = bind_as(65534);
        server = std::make_unique<http_server_t>([this](const auto&) {
            ::listen(descriptor, 1);
            return http_server_t::json(R"({"a": 1})");
        });
        QVERIFY(http_t::map_base(utility::cnfserver::base, server->port()));
        const QString error = document_wait_t(taken, 0).run().error;
        QVERIFY2(error.contains("held by user 65534"), qPrintable(error));
        QCOMPARE(server->requests().size(), 1);
    }

    void cleanup() {
        if (descriptor >= 0) {
            ::close(std::exchange(descriptor, -1));
        }
    }

    void giving_up_ends_the_wait_data() {
        QTest::addColumn<bool>("before");
        QTest::newRow("while it waits") << false;
        QTest::newRow("before it begins") << true;
    }
    void giving_up_ends_the_wait() {
        QFETCH(bool, before);
        serve(nothing_yet());
        document_wait_t wait(port(), 3600);
        if (before) {
            wait.give_up();
        } else {
            connect(&wait, &document_wait_t::waiting, &wait, &document_wait_t::give_up,
                    Qt::QueuedConnection);
        }
        QCOMPARE(wait.run().error, QStringLiteral("The start was broken off."));
        QCOMPARE(server->requests().size(), before ? 0 : 1);
    }

 private:
    static http_server_t::answer_t nothing_yet() {
        return http_server_t::json("{}", "503 Service Unavailable");
    }
    void serve(const http_server_t::answer_t& _answer) {
        server = std::make_unique<http_server_t>(_answer);
        QVERIFY(http_t::map_base(utility::cnfserver::base, server->port()));
    }
    QString address() const { return server->url(); }
    quint16 port() const { return server->port(); }

    /// A port of 127.0.0.1 that belongs to a user, as a socket does to the one that makes it.
    quint16 bind_as(uid_t _user) {
        const uid_t own = ::geteuid();
        static_cast<void>(::seteuid(_user));
        descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        static_cast<void>(::seteuid(own));
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), size);
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size);
        return ntohs(address.sin_port);
    }

    int descriptor = -1;  ///< of bind_as()

    std::unique_ptr<http_server_t> server;
};

QTEST_GUILESS_MAIN(tst_document_wait_t)
#include "tst_document_wait_t.moc"
