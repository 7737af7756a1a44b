#pragma once

#include <QByteArray>
#include <QString>

#include "base/result_t.h"
#include "knx/data_point_type_t.h"

/// Values of data points as people and clients write them, and as they travel. Texts are in the
/// type's unit; numbers may have an exponent ("1.23457e+06").
namespace knx {

/// As many bytes as the type has. A failure's sentence names type, value and range.
base::result_of_t<QByteArray> encode(const data_point_type_t& _type, const QString& _text);

/// The text with the fewest decimals that encode() makes the same bytes of, the nearest of several;
/// of bytes that encode() never writes, such as other ways to write the same number, the text of
/// the number. A failure: they are no value of the type.
base::result_of_t<QString> decode(const data_point_type_t& _type, const QByteArray& _bytes);

}  // namespace knx
