#include <signal.h>

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include "endpoint/mqtt_endpoint_t.h"
#include "fakes/recording_logger_t.h"
#include "kit/real_broker_t.h"

using namespace kit;
using broker::broker_process_t;
using comunication::mqtt_endpoint_t;

/// Somebody else takes the broker's port between two lives of the broker.
class tst_broker_process_ports : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void a_listener_that_takes_the_port_gets_no_password();
    void who_holds_the_port_is_told_once();
    void password_of_a_former_life_is_worth_nothing();
    void it_may_have_more_descriptors_than_its_host();

 private:
    /// Kills the broker and takes its port before it is back.
    bool steal_port();

    std::unique_ptr<real_broker_t> broker;
    std::unique_ptr<QTcpServer> thief;
    QByteArray heard;  ///< by the thief
    int visitors = 0;
};

void tst_broker_process_ports::init() {
    heard.clear();
    visitors = 0;
    auto settings = real_broker_t::make_settings();
    settings.port_holder = [](quint16) { return QString("a thief"); };
    broker = std::make_unique<real_broker_t>(settings);
    QCOMPARE(broker->start(), QString());
}

void tst_broker_process_ports::cleanup() {
    thief.reset();
    broker.reset();
}

bool tst_broker_process_ports::steal_port() {
    thief = std::make_unique<QTcpServer>();
    connect(thief.get(), &QTcpServer::newConnection, this, [this]() {
        while (QTcpSocket* const visitor = thief->nextPendingConnection()) {
            ++visitors;
            connect(visitor, &QTcpSocket::readyRead, this,
                    [this, visitor]() { heard += visitor->readAll(); });
        }
    });
    ::kill(pid_t(broker->process.process_id()), SIGKILL);
    // No event is handled meanwhile, so nothing is started again.
    return QTest::qWaitFor([this]() {
        return thief->isListening() ||
               thief->listen(QHostAddress::LocalHost, broker->settings.port);
    });
}

void tst_broker_process_ports::a_listener_that_takes_the_port_gets_no_password() {
    mqtt_endpoint_t endpoint(broker->endpoint_settings());
    connect(&broker->process, &broker_process_t::listening, &endpoint, [&]() {
        endpoint.set_broker(broker->process.process_id(), broker->process.host_password());
    });
    QSignalSpy connected(&endpoint, &mqtt_endpoint_t::connected);
    QSignalSpy listening(&broker->process, &broker_process_t::listening);
    endpoint.start();
    QVERIFY(connected.wait());
    QVERIFY(steal_port());
    // It goes on trying, and is not ready.
    QSignalSpy tried(&broker->process, &broker_process_t::died);
    const quint64 before = endpoint.counters().reconnects;
    fakes::recording_logger_t logger;
    QTRY_VERIFY(logger.lines().size() >= 3);
    QVERIFY(!broker->process.is_listening());
    QVERIFY(listening.isEmpty());
    QCOMPARE(heard, QByteArray());
    QCOMPARE(visitors, 0);
    QCOMPARE(endpoint.counters().reconnects.load(), before);
    thief.reset();
    QTRY_COMPARE_WITH_TIMEOUT(connected.size(), 2, 20'000);
    QVERIFY(broker->process.is_listening());
}

void tst_broker_process_ports::who_holds_the_port_is_told_once() {
    fakes::recording_logger_t logger;
    QVERIFY(steal_port());
    const QString sentence =
        QString(
            "Port %1 of 127.0.0.1 is already in use by a thief. The MQTT broker cannot be "
            "started, and who signs in there gives a password away")
            .arg(broker->settings.port);
    const auto told = [&](const QString& _sentence) {
        const auto lines = logger.lines();
        return std::count_if(lines.begin(), lines.end(),
                             [&](const auto& _line) { return _line.message == _sentence; });
    };
    const QString again("The MQTT broker has ended, it is started again");
    QTRY_VERIFY_WITH_TIMEOUT(told(again) >= 4, 20'000);
    QCOMPARE(told(sentence), 1);
}

void tst_broker_process_ports::password_of_a_former_life_is_worth_nothing() {
    const QString former = broker->process.host_password();
    QSignalSpy listening(&broker->process, &broker_process_t::listening);
    ::kill(pid_t(broker->process.process_id()), SIGKILL);
    QVERIFY(listening.wait(20'000));
    mqtt_client_t host;
    QVERIFY(host.sign_in_local(broker->process.host_socket(), "@torlan", former) > 0);
    QCOMPARE(broker->let_host_in(&host), 0);
    mqtt_client_t other;
    QVERIFY(other.sign_in(broker->settings.port, "@torlan", broker->process.host_password()) > 0);
}

void tst_broker_process_ports::it_may_have_more_descriptors_than_its_host() {
    QFile limits(QStringLiteral("/proc/%1/limits").arg(broker->process.process_id()));
    QVERIFY(limits.open(QIODevice::ReadOnly));
    for (const QByteArray& line : limits.readAll().split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (line.startsWith("Max open files")) {
            const int hard = words[4].toInt();
            QVERIFY(words[3].toInt() >= std::min(hard, broker->settings.descriptors));
        }
    }
}

QTEST_GUILESS_MAIN(tst_broker_process_ports)
#include "tst_broker_process_ports.moc"
