#include "database/name_rules.h"
#include "drivers/plugins/plugin_driver_knx/telegram_report.h"
#include "fuzz/fuzz_input.h"

namespace {

constexpr std::size_t head_size = 5;

quint16 number_at(const std::uint8_t* _data) {
    return quint16(_data[0] << 8 | _data[1]);
}

/// Main type, sub-type of two bytes; ffff: none. Most are none of the table.
QString type_of(const std::uint8_t* _data) {
    const QString main = QString::number(_data[0]);
    const quint16 sub = number_at(_data + 1);
    return sub == 0xffff ? main : main + QStringLiteral(".%1").arg(sub, 3, 10, QLatin1Char('0'));
}

bus::bus_data_t listener(const QString& _type, quint16 _address) {
    bus::bus_data_t data;
    data.dpt = _type;
    data.write = knx::group_address_t(_address).text();
    return data;
}

/// What was read of a telegram is shown to people, and means the same when it is sent.
void expect_a_value(const knx::bus_point_t& _point, const knx::telegram_t& _telegram) {
    const auto value = _point.decode(_telegram);
    if (!value.is_ok() || _telegram.command == knx::command_t::read) {
        return;
    }
    FUZZ_EXPECT(database::plain_text_error(value.value).isEmpty());
    const auto sent = _point.encode(value.value);
    if (_point.type == nullptr) {
        return;  // a long one is heard, but not sent
    }
    FUZZ_EXPECT(sent.is_ok());
    const knx::telegram_t next{0, _telegram.destination, knx::command_t::write, sent.value.data,
                               sent.value.is_short};
    FUZZ_EXPECT(_point.decode(next).value == value.value);
}

}  // namespace

/// A type, an address, and what came for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    if (_size < head_size) {
        return 0;
    }
    const quint16 address = number_at(_data + 3);
    const QByteArray apdu(reinterpret_cast<const char*>(_data) + head_size,
                          qsizetype(_size - head_size));
    const auto telegram = knx::telegram_from_apdu(1, address, apdu);
    if (!telegram) {
        return 0;
    }
    FUZZ_EXPECT(knx::telegram_from_apdu(1, address, knx::apdu_of(*telegram)) == telegram);
    const knx::bus_map_t map({{QStringLiteral("i-1"), listener(type_of(_data), address)},
                              {QStringLiteral("i-2"), listener(QStringLiteral("9.001"), address)}},
                             {});
    const auto report = knx::telegram_report(map, *telegram);
    FUZZ_EXPECT(report.ids.size() == 2 && database::plain_text_error(report.value).isEmpty());
    for (const knx::bus_point_t* const point : map.listeners(telegram->destination)) {
        expect_a_value(*point, *telegram);
    }
    return 0;
}
