#include <QTest>

#include "broker/broker_config_t.h"

using broker::broker_config_t;
using broker::broker_settings_t;

namespace {

const QByteArray expected_configuration =
    R"(# Written by the server at every start: changes here are lost.
account lines
listener 1884 127.0.0.1
protocol mqtt
listener 9001 127.0.0.1
protocol websockets
socket_domain ipv4
allow_anonymous false
check_retain_source false
persistence false
set_tcp_nodelay true
max_queued_messages 1000000000
max_queued_bytes 1000
max_inflight_messages 7
max_packet_size 2000
memory_limit 3000
sys_interval 0
log_dest stderr
log_type error
log_type warning
)";

}  // namespace

class tst_broker_config_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void configuration_is_as_written_down();
    void configuration_without_websockets_has_one_listener();
};

void tst_broker_config_t::configuration_is_as_written_down() {
    broker_settings_t settings;
    settings.port = 1884;
    settings.websocket_port = 9001;
    settings.queued_bytes = 1'000;
    settings.in_flight_messages = 7;
    settings.packet_bytes = 2'000;
    settings.memory_bytes = 3'000;
    QCOMPARE(broker_config_t::configuration(settings, "account lines\n"), expected_configuration);
}

void tst_broker_config_t::configuration_without_websockets_has_one_listener() {
    const QByteArray text = broker_config_t::configuration({}, "a\n");
    QCOMPARE(text.count("listener "), qsizetype(1));
    QVERIFY(!text.contains("websockets"));
}

QTEST_GUILESS_MAIN(tst_broker_config_t)
#include "tst_broker_config_t.moc"
