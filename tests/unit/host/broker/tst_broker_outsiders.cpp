#include <sys/resource.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include "kit/real_broker_t.h"
#include "kit/strangers_t.h"

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
    const strangers_t silent(broker.settings.port, 1'300);
    QCOMPARE(silent.connected(), 1'300);
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
    auto strangers =
        std::make_unique<strangers_t>(broker.settings.port, 40, strangers_t::unfinished_connect());
    const auto dropped = [&strangers]() { return 40 - strangers->connected(); };
    // Each of them would be 4 MiB.
    QTRY_VERIFY(dropped() >= 40 - 32 / 4);
    const int grown = resident_mib(process) - before;
    qInfo("40 unfinished packets of 4 MiB: broker +%d MiB, %d of them dropped", grown, dropped());
    QVERIFY(grown < 64);
    QCOMPARE(broker.process.process_id(), process);
    QCOMPARE(bob.publish("local/api/v1/bob/me/request/x", "{}"), 0);
    strangers.reset();
    QTRY_VERIFY(entering_ms(broker) >= 0);
}

QTEST_GUILESS_MAIN(tst_broker_outsiders)
#include "tst_broker_outsiders.moc"
