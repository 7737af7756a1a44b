#include <signal.h>

#include <QtTest>
#include <atomic>
#include <future>

#include "kit/lamps_home.h"
#include "kit/password_of.h"
#include "system/support/host_process_t.h"
#include "system/support/shown_to_user.h"

using namespace kit;
using namespace support;

namespace {

struct size_of_home_t {
    int elements;
    int users;
};

/// Lamps of which each user may read others: of seven one is hidden, of seven one is written only.
QJsonObject home_of(const size_of_home_t& _size) {
    QJsonObject home = lamps_home(_size.elements, _size.elements, numbered_users(_size.users));
    QJsonObject permissions = home["permissions"].toObject();
    for (int user = 0; user < _size.users; ++user) {
        const QString id = QStringLiteral("u-user%1").arg(user);
        QJsonObject grants = permissions[id].toObject();
        for (int lamp = user % 7; lamp < _size.elements; lamp += 7) {
            grants.remove(lamp_id(lamp));
        }
        for (int lamp = (user + 1) % 7; lamp < _size.elements; lamp += 7) {
            grants[lamp_id(lamp)] = "write";
        }
        permissions[id] = grants;
    }
    home["permissions"] = permissions;
    return home;
}

/// The most that a process had in memory, in MiB.
int peak_mib_of(qint64 _pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(_pid));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    const auto peak = std::find_if(lines.begin(), lines.end(), [](const QByteArray& _line) {
        return _line.startsWith("VmHWM:");
    });
    return peak == lines.end() ? -1 : peak->mid(6).simplified().split(' ').first().toInt() / 1024;
}

}  // namespace

/// "Ready" means that every state is on the broker: counted for each user against the database, in
/// an installation whose states are more than the endpoint's queue holds.
class tst_every_state : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void is_there_when_ready_is_said_data();
    void is_there_when_ready_is_said();
    void is_there_for_the_first_who_is_let_in();
    void is_there_again_after_the_broker_was_killed();

 private:
    /// Topics of the states that the database lets this user read.
    static QSet<QByteArray> due(const host_process_t& _host, const QString& _username);
    static QSet<QByteArray> retained(const host_process_t& _host, const QString& _username);
};

void tst_every_state::is_there_when_ready_is_said_data() {
    QTest::addColumn<int>("elements");
    QTest::addColumn<int>("users");
    QTest::newRow("2,000 x 60") << 2'000 << 60;
    if (qEnvironmentVariableIsSet("TORLAN_PROOF")) {
        QTest::newRow("10,000 x 10") << 10'000 << 10;
        QTest::newRow("10,000 x 100") << 10'000 << 100;
    }
}

void tst_every_state::is_there_when_ready_is_said() {
    QFETCH(int, elements);
    QFETCH(int, users);
    host_process_t host;
    QVERIFY2(host.import(home_of({elements, users})), qPrintable(host.error()));
    QElapsedTimer clock;
    clock.start();
    QVERIFY2(host.start(), qPrintable(host.error()));
    const double seconds = double(clock.elapsed()) / 1000;
    qInfo("%d x %d: ready after %.1f s, peaks: server %d MiB, broker %d MiB", elements, users,
          seconds, peak_mib_of(host.pid()), peak_mib_of(host.broker_pid()));
    for (int user = 0; user < users; ++user) {
        const QString name = QStringLiteral("user%1").arg(user);
        const QSet<QByteArray> expected = due(host, name);
        QVERIFY(expected.size() > elements / 2);
        const QSet<QByteArray> found = retained(host, name);
        QVERIFY2(found == expected, qPrintable(QStringLiteral("%1: %2 of %3 states, %4 too many")
                                                   .arg(name)
                                                   .arg((found & expected).size())
                                                   .arg(expected.size())
                                                   .arg((found - expected).size())));
    }
    QCOMPARE(host.stop(), 0);
}

void tst_every_state::is_there_for_the_first_who_is_let_in() {
    host_process_t host;
    QVERIFY2(host.import(home_of({1'000, 5})), qPrintable(host.error()));
    const QString name = QStringLiteral("user3");
    std::atomic<bool> given_up{false};
    auto first = std::async(std::launch::async, [&]() {
        QSet<QByteArray> found;
        while (found.isEmpty() && !given_up) {
            found = retained(host, name);
        }
        return found;
    });
    const bool started = host.start();
    given_up = !started;
    const QSet<QByteArray> found = first.get();
    QVERIFY2(started, qPrintable(host.error()));
    const QSet<QByteArray> expected = due(host, name);
    QVERIFY(expected.size() > 500);
    QCOMPARE(found.size(), expected.size());
    QVERIFY(found == expected);
}

void tst_every_state::is_there_again_after_the_broker_was_killed() {
    host_process_t host;
    QVERIFY2(host.import(home_of({1'000, 5})), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    const qint64 broker = host.broker_pid();
    QCOMPARE(::kill(pid_t(broker), SIGKILL), 0);
    const QSet<QByteArray> expected = due(host, QStringLiteral("user3"));
    QTRY_VERIFY_WITH_TIMEOUT(retained(host, QStringLiteral("user3")) == expected, 30'000);
    QVERIFY(host.broker_pid() != broker);
    QVERIFY(retained(host, QStringLiteral("user1")).size() > 500);
}

QSet<QByteArray> tst_every_state::due(const host_process_t& _host, const QString& _username) {
    return states_due(_host.data(), _username);
}

QSet<QByteArray> tst_every_state::retained(const host_process_t& _host, const QString& _username) {
    const QList<QByteArray> topics =
        states_retained(_host.port(), _username, password_of(_username)).keys();
    return {topics.begin(), topics.end()};
}

QTEST_GUILESS_MAIN(tst_every_state)
#include "tst_every_state.moc"
