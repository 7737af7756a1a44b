#include "drivers/plugins/plugin_driver_knx/bus_point_t.h"

#include <algorithm>

#include "knx/data_point_types.h"
#include "knx/data_point_value.h"

namespace knx {

namespace {

constexpr qsizetype longest_unknown = 14;

base::result_of_t<QByteArray> hex_bytes(const QString& _value) {
    const QByteArray text = _value.toLatin1().toLower();
    const QByteArray bytes = QByteArray::fromHex(text);
    if (bytes.isEmpty() || bytes.size() > longest_unknown || bytes.toHex() != text) {
        return base::result_t::failed(
            QStringLiteral("The value must be 1 to 14 bytes, two hexadecimal digits for each."));
    }
    return bytes;
}

}  // namespace

bus_point_t bus_point_t::from_data(const QString& _id, const bus::bus_data_t& _data) {
    bus_point_t point;
    point.id = _id;
    point.dpt = _data.dpt;
    point.type = find_data_point_type(_data.dpt);
    point.write = group_address_t::from_text(_data.write);
    for (const QString& text : _data.heard()) {
        const auto address = group_address_t::from_text(text);
        if (address && !point.heard.contains(*address)) {
            point.heard.append(*address);
        }
    }
    point.read = _data.read;
    point.answer = _data.answer;
    point.scene = _data.scene;
    return point;
}

bool bus_point_t::is_state() const {
    static constexpr int events_of_one_bit[] = {7, 8, 10, 15, 17};
    if (type == nullptr || type->main == 2 || type->main == 3 || type->main == 17 ||
        type->main == 18) {
        return false;
    }
    return type->main != 1 || std::find(std::begin(events_of_one_bit), std::end(events_of_one_bit),
                                        type->sub) == std::end(events_of_one_bit);
}

base::result_of_t<payload_t> bus_point_t::encode(const QString& _value) const {
    const auto bytes = type == nullptr ? hex_bytes(_value) : knx::encode(*type, _value);
    if (!bytes.is_ok()) {
        return base::result_t::failed(
            QStringLiteral("Item %1, address %2: %3")
                .arg(id, write ? write->text() : QStringLiteral("none"), bytes.error));
    }
    return payload_t{bytes.value, type != nullptr && type->is_short()};
}

base::result_of_t<QString> bus_point_t::decode(const telegram_t& _telegram) const {
    if (type == nullptr) {
        return QString::fromLatin1(_telegram.data.toHex());
    }
    // Six bits in a byte of their own, or a byte in the command's: another type was sent.
    const bool is_other = _telegram.is_short != type->is_short();
    const auto value = is_other ? base::result_of_t<QString>(base::result_t::failed(
                                      QStringLiteral("Type %1 travels in another length than %2.")
                                          .arg(dpt, QString::fromLatin1(_telegram.data.toHex()))))
                                : knx::decode(*type, _telegram.data);
    if (!value.is_ok()) {
        return base::result_t::failed(QStringLiteral("Item %1, address %2: %3")
                                          .arg(id, _telegram.destination.text(), value.error));
    }
    return value;
}

}  // namespace knx
