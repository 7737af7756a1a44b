#include "broker/broker_config_t.h"

namespace broker {

QByteArray broker_config_t::configuration(const broker_settings_t& _settings,
                                          const QByteArray& _account_lines) {
    QByteArray text = "# Written by the server at every start: changes here are lost.\n";
    text += _account_lines;
    text += "listener " + QByteArray::number(_settings.port) + " 127.0.0.1\nprotocol mqtt\n";
    if (_settings.websocket_port != 0) {
        // Without the domain, version 2.0.11 ignores the address and listens everywhere.
        text += "listener " + QByteArray::number(_settings.websocket_port) +
                " 127.0.0.1\nprotocol websockets\nsocket_domain ipv4\n";
    }
    // The second would ask the plugin about a client object that does not exist.
    text += "allow_anonymous false\ncheck_retain_source false\n";
    text += "persistence false\n";
    // Nagle's algorithm makes one QoS 2 round trip 80 ms long.
    text += "set_tcp_nodelay true\n";
    // The default of 1,000 silently cuts what a late subscriber gets of the retained messages. 0
    // means no limit too, but then 2.0.11 throws off every client whose message is not permitted.
    text += "max_queued_messages 1000000000\n";
    text += "max_queued_bytes " + QByteArray::number(_settings.queued_bytes) + "\n";
    text += "max_inflight_messages " + QByteArray::number(_settings.in_flight_messages) + "\n";
    text += "max_packet_size " + QByteArray::number(_settings.packet_bytes) + "\n";
    text += "memory_limit " + QByteArray::number(_settings.memory_bytes) + "\n";
    text += "sys_interval 0\n";
    // Standard output would come when a buffer is full.
    text += "log_dest stderr\nlog_type error\nlog_type warning\n";
    return text;
}

}  // namespace broker
