#include "broker/plugin/gate_settings_t.h"

#include <QTest>

#include "broker/broker_settings_t.h"
#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace broker::plugin;

class tst_gate_settings_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void option_data();
    void option();
    void host_is_needed();
    void values_are_taken_over();
    void sessions_that_a_user_leaves_behind_leave_others_memory();
};

void tst_gate_settings_t::option_data() {
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const QByteArray& _key, const QByteArray& _value, bool _good) {
        QTest::newRow((_key + "=" + _value).left(40).constData())
            << _key << _value
            << (_good ? QByteArray() : "plugin_opt_" + _key + " has no useful value");
    };
    row("host_account", "@torlan", true);
    row("host_address", "/run/x", true);
    row("host_hash", plugin_broker_t::hash("x", 1), true);
    row("host_hash", "secret", false);
    row("idle_seconds", "1", true);
    row("idle_seconds", "0", false);
    row("idle_seconds", "x", false);
    row("idle_seconds", "1x", false);
    row("idle_seconds", "-1", false);
    row("sessions_of_user", "1", true);
    row("sessions_of_user", "0", false);
    row("sessions_of_user", "10001", false);
    row("publishes_per_second", "0", true);
    row("publishes_per_second", "1000001", false);
    row("bytes_per_second", "1000000000", true);
    row("bytes_per_second", "x", false);
    row("at_once_ms", "0", true);
    row("at_once_ms", "1001", false);
    QTest::newRow("unknown") << QByteArray("idle") << QByteArray("1")
                             << QByteArray("plugin_opt_idle is unknown");
}

void tst_gate_settings_t::option() {
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, value);
    gate_settings_t settings;
    const QByteArray told =
        QByteArray::fromStdString(settings.set(key.constData(), value.constData()));
    QTEST(told, "error");
}

void tst_gate_settings_t::host_is_needed() {
    gate_settings_t settings;
    QVERIFY(!settings.check().empty());
    settings.set("host_account", "@torlan");
    settings.set("host_address", "/run/x");
    QVERIFY(!settings.check().empty());
    settings.set("host_hash", plugin_broker_t::hash("x", 1).constData());
    QCOMPARE(settings.check(), std::string());
    settings.set("host_account", "torlan");
    QVERIFY(!settings.check().empty());
    settings.set("host_account", "@torlan");
    settings.set("host_address", "");
    QVERIFY(!settings.check().empty());
}

void tst_gate_settings_t::values_are_taken_over() {
    gate_settings_t settings;
    settings.set("idle_seconds", "10");
    settings.set("sessions_of_user", "3");
    settings.set("at_once_ms", "7");
    QCOMPARE(settings.idle.count(), 10);
    QCOMPARE(settings.sessions_of_user, 3u);
    QCOMPARE(settings.at_once.count(), 7);
}

// What waits takes about twice its payload in the broker.
void tst_gate_settings_t::sessions_that_a_user_leaves_behind_leave_others_memory() {
    const broker::broker_settings_t broker;
    QVERIFY(2 * qint64(gate_settings_t().sessions_of_user) * broker.queued_bytes <=
            broker.memory_bytes * 2 / 3);
}

QTEST_GUILESS_MAIN(tst_gate_settings_t)
#include "tst_gate_settings_t.moc"
