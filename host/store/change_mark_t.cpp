#include "store/change_mark_t.h"

namespace database::store {

QJsonObject change_mark_t::to_json() const {
    return {{QStringLiteral("device"), QString::number(file.device)},
            {QStringLiteral("file"), QString::number(file.number)},
            {QStringLiteral("sequence"), QString::number(sequence)}};
}

std::optional<change_mark_t> change_mark_t::from_json(const QJsonObject& _json) {
    bool is_device = false;
    bool is_file = false;
    bool is_sequence = false;
    const auto number = [&_json](const char* _key, bool* _is_number) {
        return _json.value(QLatin1String(_key)).toString().toULongLong(_is_number);
    };
    const change_mark_t mark{{static_cast<dev_t>(number("device", &is_device)),
                              static_cast<ino_t>(number("file", &is_file))},
                             static_cast<qint64>(number("sequence", &is_sequence))};
    return is_device && is_file && is_sequence ? std::optional(mark) : std::nullopt;
}

}  // namespace database::store
