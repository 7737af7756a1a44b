#pragma once

#include "bus/bus_port_t.h"
#include "live/realtime_writer_t.h"
#include "live/write_gate_t.h"

namespace database::live {

/// The server's side of a bus: what users ask of items with bus data goes out, what the bus reports
/// becomes their value. Host thread only.
class live_bus_port_t : public bus::bus_port_t {
    Q_OBJECT

 public:
    using points_t = QMap<QString, bus::bus_data_t>;

    /// @param _gate what asks for values
    live_bus_port_t(database_t* _database, realtime_writer_t* _realtime, const write_gate_t* _gate,
                    const bus::bus_settings_t& _settings, QObject* _parent = nullptr);
    ~live_bus_port_t() override;

    /// Takes what has bus data from now on; tells drivers when it is something else.
    void set_points(const points_t& _items, const points_t& _scenarios);

    /// Whether the bus owns it, and nobody else answers requests for it.
    bool owns_item(const QString& _id) const { return bus_items.contains(_id); }
    bool owns_scenario(const QString& _id) const { return bus_scenarios.contains(_id); }

    bus::bus_settings_t settings() const override { return given; }
    points_t items() const override { return bus_items; }
    points_t scenarios() const override { return bus_scenarios; }
    bool is_link_up() const { return is_online; }
    /// Asks the driver; of a bus without one nothing was counted.
    bus::bus_counters_t counters();

    QString value(const QString& _id_item) const override;
    void report_value(const QString& _id_item, const QString& _value) override;
    void report_execution(const QString& _id_scenario, bool _execution) override;
    void report_link(bool _online) override;
    void report_telegram(const bus::bus_telegram_t& _telegram) override;
    void report_counters(const bus::bus_counters_t& _counters) override { counted = _counters; }

 Q_SIGNALS:
    void link_changed(bool _online);
    void telegram_passed(const bus::bus_telegram_t& _telegram);

 private:
    QPointer<database_t> database;
    realtime_writer_t* const realtime;
    const bus::bus_settings_t given;
    points_t bus_items;
    points_t bus_scenarios;
    bus::bus_counters_t counted;  ///< as reported last
    bool is_online = false;
};

}  // namespace database::live
