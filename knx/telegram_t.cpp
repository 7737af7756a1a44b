#include "knx/telegram_t.h"

namespace knx {

namespace {

constexpr quint8 short_data = 0x3f;
/// A group value in the longest frame that the medium has.
constexpr qsizetype longest_apdu = 254;

}  // namespace

std::optional<telegram_t> telegram_from_apdu(quint16 _source, quint16 _destination,
                                             const QByteArray& _apdu) {
    if (_apdu.size() < 2 || _apdu.size() > longest_apdu || (_apdu[0] & 0x03) != 0) {
        return std::nullopt;
    }
    const auto second = quint8(_apdu[1]);
    const auto command = static_cast<command_t>(second & ~short_data);
    const bool is_known =
        command == command_t::read || command == command_t::response || command == command_t::write;
    if (!is_known || _destination == 0) {
        return std::nullopt;
    }
    telegram_t telegram{_source, group_address_t(_destination), command, {}, false};
    if (command != command_t::read) {
        telegram.is_short = _apdu.size() == 2;
        telegram.data = telegram.is_short ? QByteArray(1, char(second & short_data)) : _apdu.mid(2);
    }
    return telegram;
}

QByteArray apdu_of(const telegram_t& _telegram) {
    const auto command = static_cast<quint8>(_telegram.command);
    const char second =
        _telegram.is_short ? char(command | (_telegram.data[0] & short_data)) : char(command);
    const char head[] = {0, second};
    const QByteArray apdu(head, sizeof(head));
    return _telegram.is_short ? apdu : apdu + _telegram.data;
}

QString device_text(quint16 _source) {
    return QStringLiteral("%1.%2.%3")
        .arg(_source >> 12)
        .arg((_source >> 8) & 15)
        .arg(_source & 255);
}

}  // namespace knx
