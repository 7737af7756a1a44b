#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QSocketNotifier>
#include <memory>

#include "knx/knxd/eib_connection_t.h"

namespace kit {

/// A device on a real bus, in the test's own thread: it says what it is told to, answers questions
/// for the values that it has, and keeps what it hears.
class bus_device_t {
 public:
    struct heard_t {
        knx::telegram_t telegram;
        qint64 at_ns;  ///< on clock()
    };

    bus_device_t() { since.start(); }

    /// On a bus that is there; what it was on before is left.
    bool join(const QString& _url) {
        notifier.reset();
        connection = knx::eib_connection_t::open(_url);
        if (!connection || !connection->open_group_socket()) {
            return false;
        }
        notifier =
            std::make_unique<QSocketNotifier>(connection->descriptor(), QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                         [this]() { listen(); });
        return true;
    }

    /// What it answers with from now on.
    void have(const QString& _address, const QByteArray& _hex) {
        values.insert(address(_address), QByteArray::fromHex(_hex));
    }

    /// Tells everybody; of one byte below 64: in the byte of the command.
    bool say(const QString& _address, const QByteArray& _hex) {
        have(_address, _hex);
        return send(address(_address), knx::command_t::write);
    }

    /// The first value that somebody sent there since forget().
    std::optional<heard_t> first_write(const QString& _address) const {
        for (const heard_t& one : all) {
            if (one.telegram.destination == address(_address) &&
                one.telegram.command == knx::command_t::write) {
                return one;
            }
        }
        return std::nullopt;
    }
    void forget() { all.clear(); }
    /// Nanoseconds since it was made.
    qint64 clock() const { return since.nsecsElapsed(); }

 private:
    static knx::group_address_t address(const QString& _text) {
        return knx::group_address_t::from_text(_text).value_or(knx::group_address_t());
    }

    bool send(knx::group_address_t _address, knx::command_t _command) {
        const QByteArray data = values.value(_address);
        const bool is_short = data.size() == 1 && quint8(data[0]) < 64;
        return connection &&
               connection->send(_address, knx::apdu_of({0, _address, _command, data, is_short}));
    }

    void listen() {
        while (connection) {
            const auto state = connection->state();
            if (state == knx::eib_connection_t::state_t::nothing) {
                return;
            }
            const auto got = state == knx::eib_connection_t::state_t::telegram ? connection->take()
                                                                               : std::nullopt;
            if (!got) {
                notifier->setEnabled(false);
                connection.reset();
                return;
            }
            take(*got);
        }
    }

    void take(const knx::eib_connection_t::received_t& _got) {
        const auto telegram = knx::telegram_from_apdu(_got.source, _got.destination, _got.apdu);
        if (!telegram) {
            return;
        }
        all.append({*telegram, clock()});
        if (telegram->command == knx::command_t::read && values.contains(telegram->destination)) {
            send(telegram->destination, knx::command_t::response);
        }
    }

    QElapsedTimer since;
    QHash<knx::group_address_t, QByteArray> values;
    QList<heard_t> all;
    std::unique_ptr<knx::eib_connection_t> connection;
    std::unique_ptr<QSocketNotifier> notifier;
};

}  // namespace kit
