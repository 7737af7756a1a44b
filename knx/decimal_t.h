#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace knx {

/// A decimal number exactly as it was written: "21.5", "-3", "1.23457e+06". Binary fractions would
/// put what lies on the border of two values on the wrong side.
class decimal_t {
 public:
    /// Nothing: the text is no number, or longer than any that means something.
    static std::optional<decimal_t> from_text(const QString& _text);

    /// @p _whole divided by 10 to the power of @p _decimals.
    static decimal_t from_parts(qint64 _whole, int _decimals);

    /// Less than, equal to, greater than: negative, 0, positive.
    static int compare(const decimal_t& _one, const decimal_t& _other);

    bool is_whole() const;

    decimal_t times(int _factor) const;

    /// The number times 10 to the power of @p _power, the nearest whole number, halves away from
    /// zero; nothing where 64 bits do not hold it.
    std::optional<qint64> rounded(int _power = 0) const;

    /// Without exponent: "1234570", "-0.01".
    QString text() const;

 private:
    void tidy();

    bool negative = false;
    QByteArray digits;  ///< without zeros at either end; empty: 0
    int exponent = 0;   ///< of the last digit
};

}  // namespace knx
