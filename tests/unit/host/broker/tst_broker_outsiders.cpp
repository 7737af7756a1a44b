#include <sys/resource.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTcpSocket>
#include <QTest>

#include "kit/real_broker_t.h"

using namespace kit;

namespace {

/// Resident memory of a process in MiB.
int resident_mib(qint64 _process) {
    QFile status(QStringLiteral("/proc/%1/status").arg(_process));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:")) {
                return line.mid(6).simplified().split(' ').first().toInt() / 1024;
            }
        }
    }
    return -1;
}

/// A CONNECT that says it is 4 MiB long, without its last bytes.
QByteArray unfinished_connect() {
    return QByteArray("\x10\xf0\xff\xff\x01", 5) + QByteArray((4 << 20) - 100, 'x');
}

}  // namespace

/// What somebody without an account can do before the plugin is asked: bounded by options of the
/// broker, as far as it keeps to them. The figures are printed.
class tst_broker_outsiders : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void silent_sockets_beyond_the_usual_limit_lock_nobody_out();
    void unfinished_packets_end_at_the_memory_limit();

 private:
    std::unique_ptr<QTcpSocket> connection(quint16 _port) const {
        auto made = std::make_unique<QTcpSocket>();
        made->connectToHost(QHostAddress(QHostAddress::LocalHost), _port);
        made->waitForConnected(5'000);
        return made;
    }
    static int entering_ms(const real_broker_t& _broker) {
        QElapsedTimer clock;
        clock.start();
        mqtt_client_t alice;
        const int code = alice.sign_in(_broker.settings.port, "alice", "alice-password");
        return code == 0 ? int(clock.elapsed()) : -1;
    }
};

void tst_broker_outsiders::initTestCase() {
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_max < 4'000) {
        QSKIP("this system allows no more than the usual descriptors");
    }
    limit.rlim_cur = 4'000;
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

void tst_broker_outsiders::silent_sockets_beyond_the_usual_limit_lock_nobody_out() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    for (int i = 0; i < 1'300; ++i) {
        silent.push_back(connection(broker.settings.port));
        QCOMPARE(silent.back()->state(), QAbstractSocket::ConnectedState);
    }
    const int took = entering_ms(broker);
    qInfo("with 1,300 silent sockets a user is in after %d ms", took);
    QVERIFY(took >= 0);
}

void tst_broker_outsiders::unfinished_packets_end_at_the_memory_limit() {
    auto settings = real_broker_t::make_settings();
    settings.memory_bytes = 32 * 1024 * 1024;
    real_broker_t broker(settings);
    QCOMPARE(broker.start(), QString());
    mqtt_client_t bob;
    QCOMPARE(bob.sign_in(broker.settings.port, "bob", "bob-password"), 0);
    const int before = resident_mib(broker.process.process_id());
    const qint64 process = broker.process.process_id();
    const QByteArray packet = unfinished_connect();
    std::vector<std::unique_ptr<QTcpSocket>> strangers;
    for (int i = 0; i < 40; ++i) {
        strangers.push_back(connection(broker.settings.port));
        QTcpSocket& one = *strangers.back();
        one.write(packet);
        while (one.bytesToWrite() > 0 && one.waitForBytesWritten(5'000)) {
        }
    }
    const auto dropped = [&strangers]() {
        return std::count_if(strangers.begin(), strangers.end(), [](const auto& _one) {
            return _one->state() == QAbstractSocket::UnconnectedState;
        });
    };
    // Each of them would be 4 MiB.
    QTRY_VERIFY(dropped() >= 40 - 32 / 4);
    const int grown = resident_mib(process) - before;
    qInfo("40 unfinished packets of 4 MiB: broker +%d MiB, %d of them dropped", grown,
          int(dropped()));
    QVERIFY(grown < 64);
    QCOMPARE(broker.process.process_id(), process);
    QCOMPARE(bob.publish("local/api/v1/bob/me/request/x", "{}"), 0);
    strangers.clear();
    QTRY_VERIFY(entering_ms(broker) >= 0);
}

QTEST_GUILESS_MAIN(tst_broker_outsiders)
#include "tst_broker_outsiders.moc"
