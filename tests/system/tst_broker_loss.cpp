#include <signal.h>
#include <unistd.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// The broker is killed and comes back; nothing stays lost.
class tst_broker_loss : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void states_and_answers_are_back_after_the_broker_was_killed();
    void a_killed_host_takes_its_broker_along();
    void a_listener_that_takes_the_port_gets_no_password_and_is_told();
};

void tst_broker_loss::states_and_answers_are_back_after_the_broker_was_killed() {
    host_process_t host;
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    for (int round = 0; round < 2; ++round) {
        const qint64 broker = host.broker_pid();
        QVERIFY(broker > 0);
        QCOMPARE(::kill(static_cast<pid_t>(broker), SIGKILL), 0);
        QTRY_VERIFY_WITH_TIMEOUT(host.broker_pid() > 0 && host.broker_pid() != broker, 20000);
        // A write while nobody could hear it: it must be in the states that come back.
        QCOMPARE(host.control({"set", "i-lamp", QString::number(round + 5)}), 0);
        std::unique_ptr<mqtt_client_t> alice;
        QTRY_VERIFY_WITH_TIMEOUT(
            (alice = std::make_unique<mqtt_client_t>()) && join(*alice, host, "alice"), 20000);
        for (const char* id : {"e-night", "e-therm"}) {
            QVERIFY2(alice->wait_for(state_topic("alice", id)), id);
        }
        QVERIFY(alice->wait_for([round](const mqtt_client_t::message_t& m) {
            return m.topic == state_topic("alice", "e-lamp") &&
                   value_in(m.json(), "execute") == QString::number(round + 5);
        }));
        const QJsonObject answer =
            alice->request(request_topic("alice", "set", "e-lamp"), write_payload("dim", round));
        QCOMPARE(answer["data"]["functions"]["dim"], QJsonValue("202"));
    }
    QCOMPARE(host.stop(), 0);
}

void tst_broker_loss::a_killed_host_takes_its_broker_along() {
    host_process_t host;
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    const auto broker = static_cast<pid_t>(host.broker_pid());
    QVERIFY(broker > 0);
    host.process().kill();
    QVERIFY(host.process().waitForFinished());
    QTRY_VERIFY(!QFile::exists(QStringLiteral("/proc/%1/exe").arg(broker)) ||
                ::kill(broker, 0) != 0);
    // And the folder can be used again at once.
    QVERIFY2(host.start(), qPrintable(host.error()));
    QCOMPARE(host.stop(), 0);
}

void tst_broker_loss::a_listener_that_takes_the_port_gets_no_password_and_is_told() {
    host_process_t host;
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QTcpServer thief;
    QByteArray heard;
    int visitors = 0;
    connect(&thief, &QTcpServer::newConnection, this, [&]() {
        while (QTcpSocket* const visitor = thief.nextPendingConnection()) {
            ++visitors;
            connect(visitor, &QTcpSocket::readyRead, this,
                    [&heard, visitor]() { heard += visitor->readAll(); });
        }
    });
    // Its broker may be back before us; then once more.
    while (!thief.isListening()) {
        QTRY_VERIFY(host.broker_pid() > 0);
        ::kill(static_cast<pid_t>(host.broker_pid()), SIGKILL);
        const QDeadlineTimer limit(1'000);
        while (!thief.listen(QHostAddress::LocalHost, host.port()) && !limit.hasExpired()) {
        }
    }
    const QByteArray sentence = QByteArray("Port ") + QByteArray::number(host.port()) +
                                " of 127.0.0.1 is already in use by ";
    // A server that root has started may not look into our process.
    const QByteArray user = " of user " + QByteArray::number(::geteuid()) + '.';
    const auto is_told = [&]() {
        QFile log(host.data() + QStringLiteral("/logs/server-torlan.log"));
        const QByteArray text = log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
        return text.contains(sentence) && text.contains(user);
    };
    QTRY_VERIFY_WITH_TIMEOUT(is_told(), 20'000);
    QCOMPARE(heard, QByteArray());
    QCOMPARE(visitors, 0);
    thief.close();
    mqtt_client_t alice;
    QTRY_VERIFY_WITH_TIMEOUT(join(alice, host, "alice"), 40'000);
    QVERIFY(alice.wait_for(state_topic("alice", "e-lamp")));
    QCOMPARE(host.stop(), 0);
}

QTEST_GUILESS_MAIN(tst_broker_loss)
#include "tst_broker_loss.moc"
