#pragma once

#include <QMap>
#include <QObject>

#include "bus/bus_counters_t.h"
#include "bus/bus_data_t.h"
#include "bus/bus_settings_t.h"
#include "bus/bus_telegram_t.h"

namespace bus {

/// What the server offers a bus driver: the items and scenarios with bus data, the write requests
/// for them, and a place for values that come from the bus. A driver gets it through its capability
/// "IBus"; without one there is no bus for it.
///
/// Threads: everything on the server's main thread, which is also where drivers live; no call
/// blocks. Ownership: the server's; it outlives the driver's start(false). Errors: an id that is
/// not or no longer known is ignored, a driver may be a moment behind.
class bus_port_t : public QObject {
    Q_OBJECT

 public:
    explicit bus_port_t(QObject* _parent = nullptr);
    ~bus_port_t() override;

    virtual bus_settings_t settings() const = 0;

    /// Everything that has bus data, by item and scenario id; cheap.
    virtual QMap<QString, bus_data_t> items() const = 0;
    virtual QMap<QString, bus_data_t> scenarios() const = 0;

    /// What users see now; empty for an unknown id.
    virtual QString value(const QString& _id_item) const = 0;

    /// A value came from the bus, or was sent to where the item listens itself. Pushed to users,
    /// unchanged values too. It never becomes a request.
    virtual void report_value(const QString& _id_item, const QString& _value) = 0;
    virtual void report_execution(const QString& _id_scenario, bool _execution) = 0;

    /// The link is there or lost; users are told. Offline until told otherwise.
    virtual void report_link(bool _online) = 0;

    /// A telegram came or went, whoever listens: for people who watch, nothing depends on it.
    virtual void report_telegram(const bus_telegram_t& _telegram) = 0;
    /// What was counted until now; the answer to counters_asked().
    virtual void report_counters(const bus_counters_t& _counters) = 0;

 Q_SIGNALS:
    /// Somebody wants it; for items and scenarios with bus data only, in order. Whoever takes it
    /// answers by reporting, or not at all.
    void value_requested(const QString& _id_item, const QString& _value);
    void execution_requested(const QString& _id_scenario, bool _execution);

    /// items() or scenarios() are others now.
    void points_changed();

    /// Somebody looks: answered by report_counters() before this returns.
    void counters_asked();
};

}  // namespace bus
