#include "base/json_text.h"
#include "commands.h"
#include "database/name_rules.h"
#include "knx/data_point_types.h"
#include "knx/data_point_value.h"
#include "output_t.h"

/// Values of KNX data points; no folder is looked at.
namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;

result_t unknown_type(const QString& _id) {
    return result_t::failed(
        QStringLiteral("There is no data point type %1.").arg(database::quoted(_id)));
}

result_of_t<QByteArray> bytes_of(const QString& _hex) {
    const QByteArray bytes = QByteArray::fromHex(_hex.toLatin1());
    if (bytes.isEmpty() || bytes.toHex() != _hex.toLower().toLatin1()) {
        return result_t::failed(
            QStringLiteral("%1 is no text of bytes: two hexadecimal digits for each.")
                .arg(database::quoted(_hex)));
    }
    return bytes;
}

result_of_t<const knx::data_point_type_t*> type_of(const call_t& _call) {
    const knx::data_point_type_t* const type = knx::find_data_point_type(_call["TYPE"]);
    return type == nullptr ? result_of_t<const knx::data_point_type_t*>(unknown_type(_call["TYPE"]))
                           : result_of_t<const knx::data_point_type_t*>(type);
}

/// One text, or an object with it alone.
outcome_t write(const call_t& _call, const char* _key, const QString& _text) {
    output_t output;
    if (_call.has("json")) {
        output.line(QJsonObject{{QLatin1String(_key), _text}});
    } else {
        output.line(_text);
    }
    return output.finish();
}

outcome_t encode_value(const call_t& _call) {
    const auto type = type_of(_call);
    const auto bytes =
        type.is_ok() ? knx::encode(*type.value, _call["VALUE"]) : result_of_t<QByteArray>(type);
    return bytes.is_ok() ? write(_call, "bytes", QString::fromLatin1(bytes.value.toHex()))
                         : outcome_t(bytes);
}

outcome_t decode_value(const call_t& _call) {
    const auto type = type_of(_call);
    const auto bytes = type.is_ok() ? bytes_of(_call["BYTES"]) : result_of_t<QByteArray>(type);
    if (!bytes.is_ok()) {
        return bytes;
    }
    const auto text = knx::decode(*type.value, bytes.value);
    return text.is_ok() ? write(_call, "value", text.value) : outcome_t(text);
}

outcome_t list_types(const call_t& _call) {
    output_t output;
    for (const knx::data_point_type_t& type : knx::data_point_types()) {
        const QString name = QString::fromUtf8(type.name);
        if (_call.has("json")) {
            output.line(QJsonObject{{QStringLiteral("type"), type.id()},
                                    {QStringLiteral("name"), name},
                                    {QStringLiteral("range"), type.range()}});
        } else {
            output.line(
                QStringLiteral("%1 %2 %3").arg(type.id(), -8).arg(name, -32).arg(type.range()));
        }
    }
    return output.finish();
}

}  // namespace

commands_t dpt_commands() {
    return {
        {.name = "dpt encode",
         .arguments = "TYPE VALUE",
         .help = "print the bytes of a value of a KNX data point type",
         .run = encode_value,
         .on = works_on_t::nothing,
         .options = {json_option},
         .examples = {QStringLiteral("dpt encode 9.001 -5.5")}},
        {.name = "dpt decode",
         .arguments = "TYPE BYTES",
         .help = "print the value that the bytes are",
         .run = decode_value,
         .on = works_on_t::nothing,
         .options = {json_option},
         .examples = {QStringLiteral("dpt decode 9.001 0c33")}},
        {.name = "dpt list",
         .arguments = "",
         .help = "list the data point types with their units and ranges",
         .run = list_types,
         .on = works_on_t::nothing,
         .options = {json_option}},
    };
}

}  // namespace torlan
