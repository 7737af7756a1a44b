#pragma once

#include <QByteArray>
#include <optional>

#include "knx/group_address_t.h"

namespace knx {

/// What a telegram to a group address is about.
enum class command_t : quint8 { read = 0x00, response = 0x40, write = 0x80 };

/// A telegram to a group address.
struct telegram_t {
    quint16 source = 0;  ///< the device; 0 for our own
    group_address_t destination;
    command_t command = command_t::write;
    QByteArray data;        ///< the value's bytes; of a read: none
    bool is_short = false;  ///< at most six bits, in the byte of the command

    bool operator==(const telegram_t&) const = default;
};

/// Nothing: the bytes of the application layer are no group telegram.
std::optional<telegram_t> telegram_from_apdu(quint16 _source, quint16 _destination,
                                             const QByteArray& _apdu);

/// What goes to the bus.
QByteArray apdu_of(const telegram_t& _telegram);

/// "1.1.5"
QString device_text(quint16 _source);

}  // namespace knx
