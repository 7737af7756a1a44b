#pragma once

#include "installation/installation_t.h"

/// A home in pieces: what a test is about stands in the test.
class home_on_bus_t {
 public:
    using installation_t = database::installation::installation_t;

    home_on_bus_t& item(const QString& _id, const QString& _dpt, const QString& _write,
                        const QStringList& _status, const QString& _value) {
        home.items.insert(_id, {_value});
        bus::bus_data_t data;
        data.dpt = _dpt;
        data.write = _write;
        data.status = _status;
        home.item_buses.insert(_id, data);
        return *this;
    }
    home_on_bus_t& element(const QString& _id, const QMap<QString, QString>& _functions) {
        home.elements[_id].functions = _functions;
        return *this;
    }
    home_on_bus_t& thermostat(const QMap<QString, QString>& _ids, const QString& _actual) {
        home.thermostats.insert("t", {_ids, _actual, {}});
        return *this;
    }

    installation_t home;
};

/// "write 1/1/2 01" each.
inline QStringList texts_of(const QList<knx::telegram_t>& _telegrams) {
    QStringList texts;
    for (const knx::telegram_t& telegram : _telegrams) {
        const QString command =
            telegram.command == knx::command_t::response ? "response " : "write ";
        texts.append(command + telegram.destination.text() + ' ' +
                     QString::fromLatin1(telegram.data.toHex()));
    }
    return texts;
}
