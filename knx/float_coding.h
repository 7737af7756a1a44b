#pragma once

#include <QString>
#include <optional>

#include "knx/data_point_type_t.h"
#include "knx/encoded_t.h"

namespace knx {

encoded_t encode_float16(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_float16(const data_point_type_t& _type, const QByteArray& _bytes);

encoded_t encode_float32(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_float32(const data_point_type_t& _type, const QByteArray& _bytes);

}  // namespace knx
