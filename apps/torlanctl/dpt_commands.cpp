#include "dpt_commands.h"

#include "database/name_rules.h"
#include "knx/data_point_types.h"
#include "knx/data_point_value.h"
#include "program/standard_streams.h"

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

}  // namespace

result_t encode_value(const QString&, const QStringList& _arguments) {
    const knx::data_point_type_t* const type = knx::find_data_point_type(_arguments[0]);
    if (type == nullptr) {
        return unknown_type(_arguments[0]);
    }
    const auto bytes = knx::encode(*type, _arguments[1]);
    return bytes.is_ok() ? write_output(bytes.value.toHex() + '\n') : result_t(bytes);
}

result_t decode_value(const QString&, const QStringList& _arguments) {
    const knx::data_point_type_t* const type = knx::find_data_point_type(_arguments[0]);
    if (type == nullptr) {
        return unknown_type(_arguments[0]);
    }
    const auto bytes = bytes_of(_arguments[1]);
    if (!bytes.is_ok()) {
        return bytes;
    }
    const auto text = knx::decode(*type, bytes.value);
    return text.is_ok() ? write_output(text.value.toUtf8() + '\n') : result_t(text);
}

result_t list_types(const QString&, const QStringList&) {
    QString list;
    for (const knx::data_point_type_t& type : knx::data_point_types()) {
        list += QStringLiteral("%1 %2 %3\n")
                    .arg(type.id(), -8)
                    .arg(QString::fromUtf8(type.name), -32)
                    .arg(type.range());
    }
    return write_output(list.toUtf8());
}

}  // namespace torlan
