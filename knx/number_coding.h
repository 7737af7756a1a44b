#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "knx/data_point_type_t.h"
#include "knx/decimal_t.h"
#include "knx/encoded_t.h"

/// Whole numbers on the wire; what all numbers share.
namespace knx {

/// Big end first, as many bytes as the type has; negative numbers as two's complement.
QByteArray wire_bytes(const data_point_type_t& _type, qint64 _number);

/// The unsigned number that they are.
quint64 wire_number(const QByteArray& _bytes);

/// Whether a number lies in the type's range.
bool in_range(const data_point_type_t& _type, const decimal_t& _number);

/// The text with the fewest decimals for _numerator / _denominator that _fits takes, the nearest of
/// several; the ends of the range count. Nothing: there is none.
std::optional<QString> shortest_text(const data_point_type_t& _type, qint64 _numerator,
                                     qint64 _denominator,
                                     const std::function<bool(const decimal_t&)>& _fits);

encoded_t encode_code(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_code(const data_point_type_t& _type, const QByteArray& _bytes);

encoded_t encode_quantity(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_quantity(const data_point_type_t& _type, const QByteArray& _bytes);

encoded_t encode_scene(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_scene(const data_point_type_t& _type, const QByteArray& _bytes);

}  // namespace knx
