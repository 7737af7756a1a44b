#pragma once

#include <QStringList>

#include "bus/bus_port_t.h"

namespace fakes {

/// A port that keeps what a driver reports; the test is the server's side.
class recording_bus_port_t : public bus::bus_port_t {
    Q_OBJECT

 public:
    bus::bus_settings_t given;
    QMap<QString, bus::bus_data_t> item_data;
    QMap<QString, bus::bus_data_t> scenario_data;
    QMap<QString, QString> values;
    QStringList reported;     ///< "i-lamp=1", "s-night=true", in order
    QStringList link_states;  ///< "online", "offline"
    QList<bus::bus_telegram_t> telegrams;
    bus::bus_counters_t counters;

    bus::bus_settings_t settings() const override { return given; }
    QMap<QString, bus::bus_data_t> items() const override { return item_data; }
    QMap<QString, bus::bus_data_t> scenarios() const override { return scenario_data; }
    QString value(const QString& _id) const override { return values.value(_id); }

    void report_value(const QString& _id, const QString& _value) override {
        values.insert(_id, _value);
        reported.append(_id + QLatin1Char('=') + _value);
        Q_EMIT changed();
    }
    void report_execution(const QString& _id, bool _execution) override {
        reported.append(_id + QLatin1String(_execution ? "=true" : "=false"));
        Q_EMIT changed();
    }
    void report_link(bool _online) override {
        link_states.append(QLatin1String(_online ? "online" : "offline"));
        Q_EMIT changed();
    }
    void report_telegram(const bus::bus_telegram_t& _telegram) override {
        telegrams.append(_telegram);
        Q_EMIT changed();
    }
    void report_counters(const bus::bus_counters_t& _counters) override { counters = _counters; }

 Q_SIGNALS:
    void changed();
};

}  // namespace fakes
