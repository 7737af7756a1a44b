#pragma once

#include <QString>
#include <optional>

#include "knx/data_point_type_t.h"
#include "knx/encoded_t.h"

namespace knx {

/// One character where the type has one byte, else a text padded with zeros.
encoded_t encode_text(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_text(const data_point_type_t& _type, const QByteArray& _bytes);

}  // namespace knx
