#pragma once

#include <QString>
#include <optional>

#include "knx/data_point_type_t.h"
#include "knx/encoded_t.h"

/// Dates and times are ISO 8601: "2026-11-22", "13:45:30", "2026-11-22T13:45:30"; the time of
/// a day of the week is "-W-3T13:45:30", Monday is 1.
namespace knx {

encoded_t encode_time_of_day(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_time_of_day(const data_point_type_t& _type, const QByteArray& _bytes);

encoded_t encode_date(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_date(const data_point_type_t& _type, const QByteArray& _bytes);

encoded_t encode_date_and_time(const data_point_type_t& _type, const QString& _text);
std::optional<QString> decode_date_and_time(const data_point_type_t& _type,
                                            const QByteArray& _bytes);

}  // namespace knx
