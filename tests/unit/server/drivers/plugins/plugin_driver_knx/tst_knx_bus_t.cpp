#include <QElapsedTimer>
#include <QTest>

#include "drivers/plugins/plugin_driver_knx/knx_bus_t.h"
#include "fakes/recording_bus_port_t.h"
#include "fakes/recording_logger_t.h"
#include "kit/bus_device_t.h"
#include "kit/opened.h"
#include "kit/real_knxd_t.h"

KIT_OPEN(knx_cache_t, knx::knx_bus_t, cache, knx::cache_reader_t* const);
KIT_OPEN(knx_backoff_t, knx::knx_bus_t, backoff, base::backoff_t);

using bus::bus_telegram_t;
using kit::bus_listener_t;
using kit::real_knxd_t;
using knx::knx_bus_t;
using cache_t = real_knxd_t::cache_t;
using kind_t = bus_telegram_t::kind_t;

/// With a real knxd and, as other devices, the programs that come with it.
class tst_knx_bus_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void write_becomes_a_telegram_that_others_hear();
    void value_changes_with_the_status_telegram();
    void telegrams_and_counters_are_shown();
    void own_telegram_sets_every_item_that_listens();
    void scene_of_the_telegram_is_executed_and_no_other();
    void end_of_a_scene_is_no_telegram();
    void scene_that_devices_are_to_learn_is_not_played();
    void value_out_of_range_is_refused_and_told();
    void bad_telegrams_are_counted_and_told_once();
    void what_is_no_group_telegram_is_counted_and_told_once();
    void question_is_answered_where_wanted();
    void values_come_from_the_cache();
    void without_a_cache_values_are_asked_for_once();
    void killed_knxd_is_found_again_and_read_again();
    void what_has_come_is_not_asked_for();
    void what_is_new_is_asked_alone();
    void what_the_cache_says_is_older_than_what_came();
    void what_waits_when_the_link_is_lost_is_never_sent();
    void pauses_begin_anew_with_each_link();
    void write_without_a_link_is_dropped_and_told();
    void held_knxd_delays_no_end();
    void missing_knxd_delays_no_end();
    void flood_is_taken();
    void flood_of_writes_is_bounded_and_told();
    void writes_are_paced();
};

namespace {

constexpr int patience_ms = 15'000;

bus::bus_data_t lamp() {
    bus::bus_data_t data;
    data.dpt = "1.001";
    data.write = "1/1/1";
    data.status = QStringList{"1/1/2"};
    data.read = true;
    return data;
}

bus::bus_data_t one_address(const char* _dpt, const char* _address) {
    bus::bus_data_t data;
    data.dpt = QString::fromLatin1(_dpt);
    data.write = QString::fromLatin1(_address);
    return data;
}

bus::bus_data_t scene(int _number) {
    bus::bus_data_t data = one_address("17.001", "0/7/1");
    data.scene = _number;
    return data;
}

/// A bus, the server's side of it and the logger.
struct site_t {
    explicit site_t(const QString& _url) {
        port.given.url = _url;
        port.given.read = false;
        port.item_data = {{"i-lamp", lamp()},
                          {"i-temperature", one_address("9.001", "1/2/1")},
                          {"i-copy", one_address("9.001", "1/2/1")},
                          {"i-step", one_address("3.007", "1/3/1")}};
        port.scenario_data = {{"s-3", scene(3)}, {"s-4", scene(4)}};
    }
    bool start() {
        bus = std::make_unique<knx_bus_t>(&port);
        return QTest::qWaitFor([this]() { return port.link_states.contains("online"); },
                               patience_ms);
    }
    bool comes(const QString& _reported) {
        return QTest::qWaitFor([&]() { return port.reported.contains(_reported); }, patience_ms);
    }

    fakes::recording_logger_t logger;
    fakes::recording_bus_port_t port;
    std::unique_ptr<knx_bus_t> bus;
};

bool is_heard(bus_listener_t& _listener, const QString& _text) {
    return QTest::qWaitFor([&]() { return _listener.heard().contains(_text); }, patience_ms);
}

}  // namespace

void tst_knx_bus_t::write_becomes_a_telegram_that_others_hear() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    bus_listener_t listener(knxd);
    site_t site(knxd.url());
    QVERIFY(site.start());
    // The listener may still be on its way in.
    QVERIFY(QTest::qWaitFor(
        [&]() {
            return knxd.tool("groupswrite", {"7/7/7", "1"}) && listener.heard().contains("7/7/7");
        },
        patience_ms));
    Q_EMIT site.port.value_requested("i-lamp", "1");
    QVERIFY(is_heard(listener, "to 1/1/1: 01"));
    Q_EMIT site.port.value_requested("i-temperature", "21.5");
    QVERIFY(is_heard(listener, "to 1/2/1: 0C 33"));
    Q_EMIT site.port.execution_requested("s-3", true);
    QVERIFY(is_heard(listener, "to 0/7/1: 02"));
}

void tst_knx_bus_t::value_changes_with_the_status_telegram() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    Q_EMIT site.port.value_requested("i-lamp", "1");
    QTRY_COMPARE_WITH_TIMEOUT(site.bus->counted().sent, quint64(1), patience_ms);
    QCOMPARE(site.port.reported, QStringList());
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    QVERIFY(site.comes("i-lamp=1"));
    QCOMPARE(site.port.reported, QStringList({"i-lamp=1"}));
    QCOMPARE(site.bus->counted().sent, quint64(1));
}

void tst_knx_bus_t::telegrams_and_counters_are_shown() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    Q_EMIT site.port.value_requested("i-lamp", "1");
    QTRY_COMPARE_WITH_TIMEOUT(site.port.telegrams.size(), 1, patience_ms);
    QVERIFY(knxd.tool("groupread", {"1/1/2"}));
    QVERIFY(knxd.tool("groupwrite", {"1/2/1", "0C", "33"}));
    QTRY_COMPARE_WITH_TIMEOUT(site.port.telegrams.size(), 3, patience_ms);
    QCOMPARE(site.port.telegrams[0],
             (bus_telegram_t{kind_t::write, "", "1/1/1", "1.001", "1", {"i-lamp"}}));
    QCOMPARE(site.port.telegrams[1].kind, kind_t::read);
    QCOMPARE(site.port.telegrams[2].value, "21.5");
    QVERIFY(!site.port.telegrams[2].source.isEmpty());
    Q_EMIT site.port.counters_asked();
    QCOMPARE(site.port.counters.received, quint64(2));
    QCOMPARE(site.port.counters.sent, quint64(1));
}

void tst_knx_bus_t::own_telegram_sets_every_item_that_listens() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    Q_EMIT site.port.value_requested("i-temperature", "21.504");
    QVERIFY(site.comes("i-temperature=21.5"));
    QCOMPARE(site.port.reported, QStringList({"i-copy=21.5", "i-temperature=21.5"}));
}

void tst_knx_bus_t::scene_of_the_telegram_is_executed_and_no_other() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    QVERIFY(knxd.tool("groupwrite", {"0/7/1", "03"}));
    QVERIFY(site.comes("s-4=true"));
    QCOMPARE(site.port.reported, QStringList({"s-3=false", "s-4=true"}));
    Q_EMIT site.port.execution_requested("s-3", true);
    QVERIFY(site.comes("s-3=true"));
    QCOMPARE(site.port.reported.mid(2), QStringList({"s-3=true", "s-4=false"}));
}

void tst_knx_bus_t::end_of_a_scene_is_no_telegram() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    Q_EMIT site.port.execution_requested("s-3", false);
    QCOMPARE(site.port.reported, QStringList({"s-3=false"}));
    // What waited would go before it.
    Q_EMIT site.port.value_requested("i-temperature", "20");
    QVERIFY(site.comes("i-temperature=20"));
    QCOMPARE(site.bus->counted().sent, quint64(1));
}

void tst_knx_bus_t::scene_that_devices_are_to_learn_is_not_played() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    bus::bus_data_t learning = scene(3);
    learning.dpt = "18.001";
    site.port.scenario_data.insert("s-3", learning);
    QVERIFY(site.start());
    for (const char* telegram : {"82", "02"}) {  // learn it, play it
        QVERIFY(knxd.tool("groupwrite", {"0/7/1", telegram}));
    }
    QVERIFY(site.comes("s-3=true"));
    QCOMPARE(site.port.reported, QStringList({"s-3=true", "s-4=false"}));
}

void tst_knx_bus_t::value_out_of_range_is_refused_and_told() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    Q_EMIT site.port.value_requested("i-temperature", "-300");
    QCOMPARE(site.bus->counted().refused, quint64(1));
    QVERIFY(site.logger.count(
                "Item i-temperature, address 1/2/1: The value \"-300\" is out of range") > 0);
    Q_EMIT site.port.value_requested("i-nobody", "1");
    QCOMPARE(site.bus->counted().refused, quint64(1));
}

void tst_knx_bus_t::bad_telegrams_are_counted_and_told_once() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    for (const QStringList& bad : {QStringList{"1/2/1", "0c"}, QStringList{"1/2/1", "7f", "ff"},
                                   QStringList{"1/1/2", "01", "02"}, QStringList{"6/6/6", "01"}}) {
        QVERIFY(knxd.tool("groupwrite", bad));
    }
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    QVERIFY(site.comes("i-lamp=1"));
    QCOMPARE(site.port.reported, QStringList({"i-lamp=1"}));
    // Two items listen to one of the addresses.
    QCOMPARE(site.bus->counted().undecodable, quint64(5));
    QCOMPARE(site.bus->counted().unknown, quint64(1));
    QCOMPARE(site.logger.count("left out. Item i-temperature, address 1/2/1"), qsizetype(1));
}

void tst_knx_bus_t::what_is_no_group_telegram_is_counted_and_told_once() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    const auto device = knx::eib_connection_t::open(knxd.url());
    QVERIFY(device && device->open_group_socket());
    for (const char* odd : {"00c1", "0300", "00c1"}) {
        QVERIFY(device->send(*knx::group_address_t::from_text("1/1/2"), QByteArray::fromHex(odd)));
    }
    QVERIFY(device->send(*knx::group_address_t::from_text("1/1/2"), QByteArray::fromHex("0081")));
    QVERIFY(site.comes("i-lamp=1"));
    QCOMPARE(site.bus->counted().malformed, quint64(3));
    QCOMPARE(site.logger.count("to address 1/1/2 is no group telegram: 00c1."), qsizetype(1));
    QCOMPARE(site.logger.count("is no group telegram"), qsizetype(1));
}

void tst_knx_bus_t::question_is_answered_where_wanted() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    site.port.item_data["i-temperature"].answer = true;
    site.port.values["i-temperature"] = "21.5";
    QVERIFY(site.start());
    bus_listener_t listener(knxd);
    QVERIFY(QTest::qWaitFor(
        [&]() {
            return knxd.tool("groupread", {"1/1/2"}) && knxd.tool("groupread", {"1/2/1"}) &&
                   listener.heard().contains("Response from");
        },
        patience_ms));
    QVERIFY(is_heard(listener, "to 1/2/1: 0C 33"));
    QVERIFY(!listener.heard().contains("to 1/1/2: "));
}

void tst_knx_bus_t::values_come_from_the_cache() {
    real_knxd_t knxd(cache_t::with);
    QVERIFY(knxd.start());
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    site_t site(knxd.url());
    site.port.given.read = true;
    QVERIFY(site.start());
    QVERIFY(site.comes("i-lamp=1"));
    QCOMPARE(site.bus->counted().asked, quint64(0));
    QCOMPARE(site.bus->counted().links, quint64(1));
}

void tst_knx_bus_t::without_a_cache_values_are_asked_for_once() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    bus_listener_t listener(knxd);
    site_t site(knxd.url());
    site.port.given.read = true;
    site.port.item_data.insert("i-other", lamp());
    QVERIFY(site.start());
    QTRY_COMPARE_WITH_TIMEOUT(site.bus->counted().asked, quint64(1), patience_ms);
    QVERIFY(knxd.tool("groupsresponse", {"1/1/2", "1"}));
    QVERIFY(site.comes("i-other=1"));
    QCOMPARE(site.port.link_states, QStringList({"online"}));
    QCOMPARE(site.bus->counted().asked, quint64(1));
}

void tst_knx_bus_t::killed_knxd_is_found_again_and_read_again() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    site.port.given.read = true;
    QVERIFY(site.start());
    for (int round = 2; round <= 4; ++round) {
        QTRY_COMPARE_WITH_TIMEOUT(site.bus->counted().asked, quint64(round - 1), patience_ms);
        knxd.end();
        QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.last(), QString("offline"), patience_ms);
        QVERIFY(knxd.start());
        QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.last(), QString("online"), patience_ms);
        QCOMPARE(site.bus->counted().links, quint64(round));
    }
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    QVERIFY(site.comes("i-lamp=1"));
}

void tst_knx_bus_t::what_has_come_is_not_asked_for() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    kit::bus_device_t device;
    QVERIFY(device.join(knxd.url()));
    site_t site(knxd.url());
    site.port.given.read = true;
    site.port.item_data.clear();
    constexpr int count = 60;  // three seconds of questions
    for (int i = 1; i <= count; ++i) {
        bus::bus_data_t data = one_address("1.001", "");
        data.status = QStringList{QStringLiteral("1/2/%1").arg(i)};
        data.read = true;
        site.port.item_data.insert(QStringLiteral("i-%1").arg(i), data);
    }
    QElapsedTimer clock;
    clock.start();
    QVERIFY(site.start());
    QVERIFY(device.say("1/2/60", "01"));
    QVERIFY(site.comes("i-60=1"));
    QVERIFY(site.bus->counted().asked < count - 1);
    QTRY_COMPARE_WITH_TIMEOUT(site.bus->counted().asked, quint64(count - 1), patience_ms);
    // 20 a second, as exactly as a coarse timer is.
    QVERIFY2(clock.elapsed() >= (count - 2) * 45, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(device.say("1/2/1", "01"));  // behind the last question
    QVERIFY(site.comes("i-1=1"));
    QCOMPARE(site.bus->counted().asked, quint64(count - 1));
}

void tst_knx_bus_t::what_is_new_is_asked_alone() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    site.port.given.read = true;
    QVERIFY(site.start());
    QTRY_COMPARE_WITH_TIMEOUT(site.bus->counted().asked, quint64(1), patience_ms);
    site.port.item_data.insert("i-late", lamp());
    site.port.item_data["i-late"].status = QStringList{"1/1/3"};
    Q_EMIT site.port.points_changed();
    QTRY_VERIFY_WITH_TIMEOUT(site.bus->counted().asked >= 2, patience_ms);
    // By a telegram, behind whatever would be asked meanwhile.
    QVERIFY(knxd.tool("groupswrite", {"1/1/3", "1"}));
    QVERIFY(site.comes("i-late=1"));
    QStringList asked;
    for (const bus::bus_telegram_t& telegram : std::as_const(site.port.telegrams)) {
        if (telegram.kind == bus::bus_telegram_t::kind_t::read) {
            asked.append(telegram.address);
        }
    }
    QCOMPARE(asked, QStringList({"1/1/2", "1/1/3"}));
}

void tst_knx_bus_t::what_the_cache_says_is_older_than_what_came() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    site.port.given.read = true;
    QVERIFY(site.start());
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    QVERIFY(site.comes("i-lamp=1"));
    const quint16 status = knx::group_address_t::from_text("1/1/2")->raw();
    Q_EMIT((*site.bus).*opened(kit::knx_cache_t()))->found(1, status, QByteArray::fromHex("0080"));
    QCOMPARE(site.port.reported, QStringList({"i-lamp=1"}));
}

void tst_knx_bus_t::what_waits_when_the_link_is_lost_is_never_sent() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    site.port.given.telegrams_per_second = 1;
    QVERIFY(site.start());
    for (int i = 0; i < 5; ++i) {
        Q_EMIT site.port.value_requested("i-step", "9");
    }
    QTRY_COMPARE_WITH_TIMEOUT(site.bus->counted().sent, quint64(1), patience_ms);
    knxd.end();
    QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.last(), QString("offline"), patience_ms);
    const quint64 sent = site.bus->counted().sent;
    QCOMPARE(sent + site.bus->counted().dropped, quint64(5));
    QVERIFY(knxd.start());
    QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.last(), QString("online"), patience_ms);
    // What would still wait would go before it.
    Q_EMIT site.port.value_requested("i-temperature", "20");
    QVERIFY(site.comes("i-temperature=20"));
    QCOMPARE(site.bus->counted().sent, sent + 1);
}

void tst_knx_bus_t::pauses_begin_anew_with_each_link() {
    real_knxd_t knxd(cache_t::without);
    site_t site(knxd.url());
    site.bus = std::make_unique<knx_bus_t>(&site.port);
    QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.size(), qsizetype(3), patience_ms);
    QVERIFY(knxd.start());
    QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.last(), QString("online"), patience_ms);
    base::backoff_t& backoff = (*site.bus).*opened(kit::knx_backoff_t());
    QVERIFY(backoff.next() <= std::chrono::milliseconds(250));
    for (int i = 0; i < 20; ++i) {
        QVERIFY(backoff.next() <= std::chrono::seconds(10));
    }
    QVERIFY(backoff.next() >= std::chrono::seconds(5));
}

void tst_knx_bus_t::write_without_a_link_is_dropped_and_told() {
    site_t site("local:/nowhere/knxd");
    site.bus = std::make_unique<knx_bus_t>(&site.port);
    Q_EMIT site.port.value_requested("i-lamp", "1");
    QCOMPARE(site.bus->counted().dropped, quint64(1));
    QVERIFY(site.logger.count("The value \"1\" for item i-lamp, address 1/1/1, is dropped") > 0);
    QTRY_COMPARE_WITH_TIMEOUT(site.port.link_states.size(), qsizetype(2), patience_ms);
    QCOMPARE(site.logger.count("The bus is not there, at local:/nowhere/knxd"), qsizetype(1));
}

void tst_knx_bus_t::held_knxd_delays_no_end() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    knxd.hold(true);
    QElapsedTimer clock;
    clock.start();
    {
        site_t site(knxd.url());
        site.bus = std::make_unique<knx_bus_t>(&site.port);
        QTest::qWait(0);
        QVERIFY(clock.elapsed() < 2000);
        clock.restart();
    }
    QVERIFY(clock.elapsed() < 2000);
    knxd.hold(false);
}

void tst_knx_bus_t::missing_knxd_delays_no_end() {
    QElapsedTimer clock;
    clock.start();
    {
        site_t site("local:/nowhere/knxd");
        site.bus = std::make_unique<knx_bus_t>(&site.port);
    }
    QVERIFY(clock.elapsed() < 2000);
}

void tst_knx_bus_t::flood_is_taken() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    knx::blocking_thread_t thread(new QObject);
    constexpr int count = 2000;
    const QString url = knxd.url();
    thread.run([url]() {
        const auto device = knx::eib_connection_t::open(url);
        for (int i = 0; device && device->open_group_socket() && i < 1; ++i) {
            for (int sent = 0; sent < count; ++sent) {
                device->send(*knx::group_address_t::from_text("1/1/2"),
                             QByteArray::fromHex(sent % 2 == 0 ? "0081" : "0080"));
            }
            device->send(*knx::group_address_t::from_text("1/2/1"),
                         QByteArray::fromHex("00800c33"));
        }
    });
    QVERIFY(site.comes("i-temperature=21.5"));
    QCOMPARE(site.port.reported.count("i-lamp=1"), qsizetype(count / 2));
    QCOMPARE(site.port.reported.count("i-lamp=0"), qsizetype(count / 2));
    QCOMPARE(site.port.link_states, QStringList({"online"}));
}

void tst_knx_bus_t::flood_of_writes_is_bounded_and_told() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    QVERIFY(site.start());
    // Without a turn of the loop: the first one is on its way, a thousand wait.
    for (int i = 0; i < 1 + 1000 + 3; ++i) {
        Q_EMIT site.port.value_requested("i-step", "9");
    }
    QCOMPARE(site.bus->counted().dropped, quint64(3));
    QCOMPARE(site.logger.count("A telegram to address 1/3/1 is dropped: 1000 wait already."),
             qsizetype(3));
}

void tst_knx_bus_t::writes_are_paced() {
    real_knxd_t knxd(cache_t::without);
    QVERIFY(knxd.start());
    site_t site(knxd.url());
    site.port.given.telegrams_per_second = 50;
    QVERIFY(site.start());
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 11; ++i) {
        Q_EMIT site.port.value_requested("i-step", "9");
    }
    Q_EMIT site.port.value_requested("i-temperature", "1");
    Q_EMIT site.port.value_requested("i-temperature", "2");
    QVERIFY(site.comes("i-temperature=2"));
    // The first goes at once, each other one 20 ms later.
    QVERIFY2(clock.elapsed() >= 11 * 20 - 10, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(site.bus->counted().sent, quint64(12));
    QCOMPARE(site.bus->counted().replaced, quint64(1));
    QVERIFY(!site.port.reported.contains("i-temperature=1"));
}

QTEST_GUILESS_MAIN(tst_knx_bus_t)
#include "tst_knx_bus_t.moc"
