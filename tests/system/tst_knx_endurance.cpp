#include <signal.h>

#include <QTcpServer>
#include <QTimer>
#include <QtTest>

#include "kit/bus_device_t.h"
#include "kit/lamps_home.h"
#include "kit/real_knxd_t.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// What a bus does to a server in the long run, with knxd as Debian sets it up and with its memory
/// (-c). Short here; as a proof as often and as long as people were told.
class tst_knx_endurance : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void killed_daemon_leaves_no_value_stale_data() { daemons(); }
    void killed_daemon_leaves_no_value_stale();
    void arriving_telegrams_are_all_pushed_data() { daemons(); }
    void arriving_telegrams_are_all_pushed();
    void user_and_bus_wait_for_each_other_shortly_data() { daemons(); }
    void user_and_bus_wait_for_each_other_shortly();
    void other_program_hears_and_is_heard();
    void silent_host_delays_neither_start_nor_end();
    void daemon_that_stops_its_clock_delays_no_end();

 private:
    static void daemons();
    /// Lamps with an address each, and one item that counts.
    static QJsonObject home();
    static QString write_address(int _lamp) { return QStringLiteral("1/1/%1").arg(_lamp + 1); }
    static QString counting_address(int _turn) { return QStringLiteral("5/1/%1").arg(_turn + 1); }
    static QString status_address(int _lamp) { return QStringLiteral("1/2/%1").arg(_lamp + 1); }
    static bool begin(host_process_t* _host, mqtt_client_t* _user, const QString& _url);
    static QString value_of(mqtt_client_t* _user, int _lamp);
};

namespace {

const bool is_proof = qEnvironmentVariableIsSet("TORLAN_PROOF");
const int lamps = is_proof ? 20 : 6;
const int kills = is_proof ? 20 : 3;
const int arriving = is_proof ? 6'000 : 150;
const int samples = is_proof ? 1'000 : 40;
constexpr std::chrono::milliseconds between_arrivals{20};
const QStringList counting{"execute", "level"};

using cache_t = real_knxd_t::cache_t;

QByteArray hex_of(int _value) {
    return _value != 0 ? "01" : "00";
}

/// Milliseconds, of sorted times.
QString percentiles_of(QList<qint64> _nanoseconds) {
    std::sort(_nanoseconds.begin(), _nanoseconds.end());
    const auto at = [&](double _share) {
        return double(_nanoseconds[qsizetype(double(_nanoseconds.size() - 1) * _share)]) / 1e6;
    };
    return QStringLiteral("p50 %1 ms, p99 %2 ms, longest %3 ms")
        .arg(at(0.5), 0, 'f', 1)
        .arg(at(0.99), 0, 'f', 1)
        .arg(at(1), 0, 'f', 1);
}

}  // namespace

void tst_knx_endurance::daemons() {
    QTest::addColumn<cache_t>("cache");
    QTest::newRow("without -c") << cache_t::without;
    QTest::newRow("with -c") << cache_t::with;
}

QJsonObject tst_knx_endurance::home() {
    QJsonObject home = lamps_home(lamps + 1, lamps + 2, {"alice"});
    QJsonObject items = home["items"].toObject();
    for (int i = 0; i < lamps; ++i) {
        items["i-" + QString::number(i)] =
            QJsonObject{{"value", "0"},
                        {"knx", QJsonObject{{"dpt", "1.001"},
                                            {"write", write_address(i)},
                                            {"status", QJsonArray{status_address(i)}}}}};
    }
    // Two functions that count: a state that waits gives way to a later one of the same functions,
    // so of telegrams in turn each is a push, however busy the machine is.
    for (int i = 0; i < int(counting.size()); ++i) {
        items["i-" + QString::number(lamps + i)] =
            QJsonObject{{"value", "0"},
                        {"knx", QJsonObject{{"dpt", "7.001"},
                                            {"status", QJsonArray{counting_address(i)}},
                                            {"read", false}}}};
    }
    home["items"] = items;
    QJsonObject elements = home["elements"].toObject();
    QJsonObject counter = elements[lamp_id(lamps)].toObject();
    counter["type"] = 2;
    counter["functions"] = QJsonObject{{counting[0], "i-" + QString::number(lamps)},
                                       {counting[1], "i-" + QString::number(lamps + 1)}};
    elements[lamp_id(lamps)] = counter;
    home["elements"] = elements;
    return home;
}

bool tst_knx_endurance::begin(host_process_t* _host, mqtt_client_t* _user, const QString& _url) {
    return _host->import(home()) && _host->start({"--knx", _url, "--knx-rate", "100"}) &&
           join(*_user, *_host, "alice");
}

QString tst_knx_endurance::value_of(mqtt_client_t* _user, int _lamp) {
    return value_in(_user->request(request_topic("alice", "get", lamp_id(_lamp))), "execute");
}

void tst_knx_endurance::killed_daemon_leaves_no_value_stale() {
    QFETCH(cache_t, cache);
    real_knxd_t knxd(cache);
    QVERIFY(knxd.start());
    // The server finds the bus by another name, when the device is on it already: as on a real bus,
    // whose devices are there when knxd is not.
    const QTemporaryDir folder;
    const QString name = folder.filePath("bus");
    bus_device_t device;
    QVERIFY(device.join(knxd.url()));
    for (int i = 0; i < lamps; ++i) {
        device.have(status_address(i), hex_of(0));
    }
    QVERIFY(QFile::link(knxd.socket(), name));
    host_process_t host;
    mqtt_client_t alice;
    QVERIFY2(begin(&host, &alice, "local:" + name), qPrintable(host.error()));
    for (int round = 1; round <= kills; ++round) {
        QVERIFY(QFile::remove(name));
        knxd.end();
        QVERIFY(knxd.start());
        QVERIFY(device.join(knxd.url()));
        // Every lamp was switched meanwhile by hand; half of them say so as soon as they can.
        for (int i = 0; i < lamps; ++i) {
            const QByteArray now = hex_of((round + i) % 2);
            QVERIFY(i % 2 == 0 ? device.say(status_address(i), now)
                               : (device.have(status_address(i), now), true));
        }
        QVERIFY(QFile::link(knxd.socket(), name));
        for (int i = 0; i < lamps; ++i) {
            QTRY_COMPARE_WITH_TIMEOUT(value_of(&alice, i), QString::number((round + i) % 2),
                                      20'000);
        }
    }
    QCOMPARE(host.stop(), 0);
}

void tst_knx_endurance::arriving_telegrams_are_all_pushed() {
    QFETCH(cache_t, cache);
    real_knxd_t knxd(cache);
    QVERIFY(knxd.start());
    host_process_t host;
    mqtt_client_t alice;
    QVERIFY2(begin(&host, &alice, knxd.url()), qPrintable(host.error()));
    bus_device_t device;
    QVERIFY(device.join(knxd.url()));
    const QString topic = state_topic("alice", lamp_id(lamps));
    // Until the server is there to hear it.
    QVERIFY(QTest::qWaitFor(
        [&]() {
            return device.say(counting_address(0), "ffff") && value_of(&alice, lamps) == "65535";
        },
        20'000));
    const auto pushed = [&](int _turn, const QString& _value, int _patience_ms) {
        return alice.wait_for(
            [&](const auto& _message) {
                return _message.topic == topic &&
                       value_in(_message.json(), counting[_turn]) == _value;
            },
            _patience_ms);
    };
    QVERIFY(device.say(counting_address(1), "fffe") && pushed(1, "65534", 20'000));
    // Behind what was pushed twice.
    QCOMPARE(value_of(&alice, lamps), "65535");
    alice.forget();
    int said = 0;
    bool is_said = true;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&]() {
        ++said;
        is_said = device.say(counting_address(said % 2),
                             QByteArray::number(said | 0x10000, 16).right(4)) &&
                  is_said;
        if (said == arriving) {
            timer.stop();
        }
    });
    timer.start(between_arrivals);
    QVERIFY(pushed(arriving % 2, QString::number(arriving),
                   arriving * int(between_arrivals.count()) * 2 + 20'000));
    QVERIFY(is_said);
    // Its answer is behind every push.
    QVERIFY(!alice.request(request_topic("alice", "get", lamp_id(lamps))).isEmpty());
    // A push has the value of its moment: of two telegrams at once the later one, twice.
    QMap<QString, int> former;
    int pushes = 0;
    for (const auto& message : alice.messages()) {
        if (message.topic != topic) {
            continue;
        }
        ++pushes;
        const QJsonObject functions = message.json()["data"]["functions"].toObject();
        QCOMPARE(functions.size(), 1);
        const QString name = functions.begin().key();
        const int value = value_in(message.json(), name).toInt();
        QVERIFY2(value >= former[name],
                 qPrintable(QStringLiteral("%1 after %2").arg(value).arg(former[name])));
        former[name] = value;
    }
    QCOMPARE(pushes, arriving);
    QCOMPARE(host.stop(), 0);
}

void tst_knx_endurance::user_and_bus_wait_for_each_other_shortly() {
    QFETCH(cache_t, cache);
    real_knxd_t knxd(cache);
    QVERIFY(knxd.start());
    host_process_t host;
    mqtt_client_t alice;
    QVERIFY2(begin(&host, &alice, knxd.url()), qPrintable(host.error()));
    bus_device_t device;
    QVERIFY(device.join(knxd.url()));
    QVERIFY(QTest::qWaitFor(
        [&]() { return device.say(status_address(0), "01") && value_of(&alice, 0) == "1"; },
        20'000));
    const QString topic = state_topic("alice", lamp_id(0));
    QList<qint64> to_bus;
    QList<qint64> to_user;
    for (int i = 0; i < samples; ++i) {
        const QString wanted = QString::number(i % 2);
        device.forget();
        alice.forget();
        const qint64 asked = device.clock();
        QCOMPARE(alice.publish(request_topic("alice", "set", lamp_id(0)),
                               QJsonDocument(write_payload("execute", wanted)).toJson()),
                 0);
        std::optional<bus_device_t::heard_t> heard;
        QVERIFY(QTest::qWaitFor(
            [&]() { return (heard = device.first_write(write_address(0))).has_value(); }, 20'000));
        QCOMPARE(heard->telegram.data.toHex(), hex_of(i % 2));
        to_bus.append(heard->at_ns - asked);
        const qint64 told = device.clock();
        QVERIFY(device.say(status_address(0), hex_of(i % 2)));
        QVERIFY(alice.wait_for([&](const auto& _message) {
            return _message.topic == topic && value_in(_message.json(), "execute") == wanted;
        }));
        to_user.append(device.clock() - told);
    }
    qInfo("%d API writes until their telegrams: %s", samples, qPrintable(percentiles_of(to_bus)));
    qInfo("%d telegrams until their pushes: %s", samples, qPrintable(percentiles_of(to_user)));
    QCOMPARE(host.stop(), 0);
}

void tst_knx_endurance::other_program_hears_and_is_heard() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    host_process_t host;
    mqtt_client_t alice;
    QVERIFY2(begin(&host, &alice, knxd.url()), qPrintable(host.error()));
    bus_listener_t listener(knxd);
    QVERIFY(QTest::qWaitFor(
        [&]() {
            return knxd.tool("groupswrite", {status_address(1), "1"}) &&
                   value_of(&alice, 1) == "1" && listener.heard().contains(status_address(1));
        },
        20'000));
    for (int i = 0; i < lamps; ++i) {
        alice.request(request_topic("alice", "set", lamp_id(i)), write_payload("execute", "1"));
        const QString line = "to " + write_address(i) + ": 01";
        QVERIFY2(QTest::qWaitFor([&]() { return listener.heard().contains(line); }, 20'000),
                 qPrintable(listener.heard()));
    }
    QCOMPARE(host.stop(), 0);
}

// It takes the connection and never says a word; the kernel alone does so.
void tst_knx_endurance::silent_host_delays_neither_start_nor_end() {
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    host_process_t host;
    mqtt_client_t alice;
    QVERIFY2(begin(&host, &alice, QStringLiteral("ip:127.0.0.1:%1").arg(silent.serverPort())),
             qPrintable(host.error()));
    QTRY_VERIFY_WITH_TIMEOUT(silent.hasPendingConnections(), 20'000);
    const QJsonObject answer =
        alice.request(request_topic("alice", "set", lamp_id(0)), write_payload("execute", "1"));
    QCOMPARE(answer["data"]["functions"]["execute"], QJsonValue("202"));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(host.stop(), 0);
    QVERIFY2(clock.elapsed() < 10'000, qPrintable(QString::number(clock.elapsed())));
}

void tst_knx_endurance::daemon_that_stops_its_clock_delays_no_end() {
    real_knxd_t knxd(cache_t::with);
    QVERIFY(knxd.start());
    host_process_t host;
    mqtt_client_t alice;
    QVERIFY2(begin(&host, &alice, knxd.url()), qPrintable(host.error()));
    QVERIFY(QTest::qWaitFor(
        [&]() {
            return knxd.tool("groupswrite", {status_address(0), "1"}) && value_of(&alice, 0) == "1";
        },
        20'000));
    knxd.hold(true);
    for (int i = 0; i < 2 * lamps; ++i) {
        const QJsonObject answer = alice.request(request_topic("alice", "set", lamp_id(i % lamps)),
                                                 write_payload("execute", "1"));
        QVERIFY(!answer.isEmpty());
    }
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(host.stop(), 0);
    QVERIFY2(clock.elapsed() < 10'000, qPrintable(QString::number(clock.elapsed())));
    knxd.hold(false);
}

QTEST_GUILESS_MAIN(tst_knx_endurance)
#include "tst_knx_endurance.moc"
