#pragma once

#include <QTimer>
#include <memory>

#include "base/backoff_t.h"
#include "bus/bus_port_t.h"
#include "drivers/plugins/plugin_driver_knx/blocking_thread_t.h"
#include "drivers/plugins/plugin_driver_knx/bus_map_t.h"
#include "drivers/plugins/plugin_driver_knx/cache_reader_t.h"
#include "drivers/plugins/plugin_driver_knx/knx_link_t.h"
#include "drivers/plugins/plugin_driver_knx/read_plan_t.h"
#include "drivers/plugins/plugin_driver_knx/value_reporter_t.h"
#include "drivers/plugins/plugin_driver_knx/write_queue_t.h"

namespace knx {

/// Moves values between the server's port and the bus, from its construction until it is deleted.
/// Server's main thread; what blocks is in threads of its own.
class knx_bus_t : public QObject {
    Q_OBJECT

 public:
    explicit knx_bus_t(bus::bus_port_t* _port, QObject* _parent = nullptr);
    ~knx_bus_t() override;

    const bus::bus_counters_t& counted() const { return counters; }

 private:
    void open();
    void on_opened();
    void on_lost();
    void on_received(int _source, int _destination, const QByteArray& _apdu);
    void on_cached(int _source, int _destination, const QByteArray& _apdu);
    void on_value_requested(const QString& _id, const QString& _value);
    void on_execution_requested(const QString& _id, bool _execution);
    void on_sent();

    void reload();
    void request(const bus_point_t& _point, const QString& _value);
    void answer(group_address_t _address);
    void push(const telegram_t& _telegram, bool _is_state);
    void take(const telegram_t& _telegram);
    void send_next();
    void ask_next();
    void drop(const bus_point_t& _point, const QString& _value, const QString& _reason);

    bus::bus_port_t* const port;
    const bus::bus_settings_t settings;
    bus_map_t map;
    bus::bus_counters_t counters;
    value_reporter_t reporter;
    told_once_t told;
    write_queue_t queue;
    read_plan_t plan;
    base::backoff_t backoff;
    bool online = false;
    bool told_offline = false;
    std::optional<telegram_t> on_the_way;  ///< handed to the link's thread, not yet to knxd
    QTimer retry;
    QTimer pace;  ///< until the next write may go
    QTimer asking;
    knx_link_t* const link;  ///< lives in its thread
    cache_reader_t* const cache;
    blocking_thread_t cache_thread;
    blocking_thread_t link_thread;
};

}  // namespace knx
