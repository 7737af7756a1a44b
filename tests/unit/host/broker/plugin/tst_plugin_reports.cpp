#include <QFile>
#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

namespace {

constexpr int refused = 0x87;

}  // namespace

/// What the host is told by the real broker with the plugin.
class tst_plugin_reports : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void sign_ins_refusals_and_departures_are_told();
    void nobody_else_can_read_a_report();
    void host_that_connects_anew_gets_what_it_has_not_acknowledged();
    void host_that_does_not_listen_costs_a_bounded_memory();

 private:
    qint64 memory_kib() const;

    std::unique_ptr<plugin_broker_t> broker;
};

void tst_plugin_reports::init() {
    broker = std::make_unique<plugin_broker_t>(
        // Nobody is sent away, however much he is refused.
        "plugin_opt_at_once_ms 1000\nplugin_opt_publishes_per_second 0\n"
        "plugin_opt_bytes_per_second 0");
    QVERIFY(broker->connect_host());
    QCOMPARE(broker->tell_both(), "done 1");
}

void tst_plugin_reports::cleanup() {
    QVERIFY(broker->is_running());
    broker.reset();
}

qint64 tst_plugin_reports::memory_kib() const {
    QFile file(QStringLiteral("/proc/%1/status").arg(broker->process.processId()));
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QByteArray text = file.readAll();
    return text.mid(text.indexOf("VmRSS:") + 6, 12).simplified().split(' ').first().toLongLong();
}

void tst_plugin_reports::sign_ins_refusals_and_departures_are_told() {
    int code = 0;
    broker->enter({.name = "mal lory", .password = "x", .id = "m"}, &code);
    broker->enter({.name = "alice", .password = "wrong", .id = "guess"}, &code);
    QCOMPARE(code, refused);
    const auto alice = broker->enter({.name = "alice", .id = "phone 1"});
    alice->publish("local/api/v1/bob/x/request/y", "{}");
    alice->subscribe("#");
    broker->enter({.name = "bob", .id = "phone 1"}, &code);
    QCOMPARE(code, refused);
    alice->disconnect();
    const QByteArrayList rows = broker->reports_until("event departed 1 ");
    const auto told = [&rows](const QByteArray& _kind, const QByteArray& _what) {
        for (const QByteArray& row : rows) {
            const QByteArrayList words = row.split(' ');
            if (words.value(0) == "event" && words.value(1) == _kind && words.value(2) == "1" &&
                words.mid(5).join(' ') == _what) {
                return qAbs(words.value(3).toLongLong() - QDateTime::currentSecsSinceEpoch()) < 60;
            }
        }
        return false;
    };
    QVERIFY(told("failed", "mal%20lory m 127.0.0.1 no%20name%20or%20password"));
    QVERIFY(told("failed", "alice guess 127.0.0.1 password"));
    QVERIFY(told("signed-in", "alice phone%201 127.0.0.1 -"));
    QVERIFY(told("write-refused", "alice phone%201 127.0.0.1 local/api/v1/bob/x/request/y"));
    QVERIFY(told("subscribe-refused", "alice phone%201 127.0.0.1 #"));
    QVERIFY(told("refused",
                 "bob phone%201 127.0.0.1 another%20user%20has%20this%20client%20identifier"));
    QVERIFY(told("departed", "alice phone%201 127.0.0.1 -"));
    QVERIFY(!rows.join().contains("wrong"));
}

void tst_plugin_reports::nobody_else_can_read_a_report() {
    const auto alice = broker->enter({.name = "alice", .id = "a"});
    for (const char* const filter : {"$CONTROL/torlan/v1/report", "$CONTROL/#", "$CONTROL/+/+/+",
                                     "$share/g/$CONTROL/torlan/v1/report"}) {
        QCOMPARE(alice->subscribe(filter), refused);
    }
    broker->enter({.name = "bob", .id = "b"});
    broker->reports_until("event departed 1 ");
    QVERIFY(alice->received().isEmpty());
}

void tst_plugin_reports::host_that_connects_anew_gets_what_it_has_not_acknowledged() {
    broker->enter({.name = "alice", .id = "a"});
    broker->host->vanish();
    QVERIFY(broker->connect_host("host-2"));
    broker->tell("change", {});
    QVERIFY(!broker->reports_until("event signed-in 1 ").isEmpty());
}

void tst_plugin_reports::host_that_does_not_listen_costs_a_bounded_memory() {
    const auto bob = broker->enter({.name = "bob", .id = "b"});
    // Everything that the broker and the plugin need once is there after this.
    const auto refuse = [&bob](int _count) {
        for (int i = 0; i < _count; ++i) {
            bob->publish("x" + QByteArray::number(i), "x", 1);
        }
    };
    refuse(5'000);
    const qint64 before = memory_kib();
    QVERIFY(before > 0);
    refuse(30'000);
    for (int i = 0; i < 1'000; ++i) {
        broker->enter({.name = "alice", .password = "x", .id = "id" + QByteArray::number(i)});
    }
    const qint64 grown = memory_kib() - before;
    QVERIFY2(grown < 3'000, qPrintable(QString::number(grown)));
    // The repeats are in one line.
    const QByteArrayList rows = broker->reports_until("lost ");
    qint64 count = 0;
    for (const QByteArray& row : rows) {
        if (row.startsWith("event write-refused ")) {
            count += row.split(' ').value(2).toLongLong();
        }
    }
    QCOMPARE(count, qint64(35'000));
}

QTEST_GUILESS_MAIN(tst_plugin_reports)
#include "tst_plugin_reports.moc"
