#pragma once

#include <QString>

namespace knx {

/// How a value becomes bytes.
enum class coding_t {
    code,           ///< a whole number, the bytes themselves: bits, modes, colours
    quantity,       ///< the nearest whole number of a scale; signed where the range is
    float16,        ///< hundredths, 11 bits and an exponent; 7fff is no value
    float32,        ///< IEEE 754
    ascii_text,     ///< padded with zeros
    latin1_text,    ///< padded with zeros
    time_of_day,    ///< with or without a day of the week
    date,           ///< 1990 to 2089
    date_and_time,  ///< each of them may be missing
    scene,          ///< 1 is 0 on the wire
    scene_control,  ///< the same; 128 more: learn it
};

/// In place of a sub-type: the main type alone, a plain number.
constexpr int main_type_alone = -1;

/// A row of the table of data point types.
struct data_point_type_t {
    int main;
    int sub;  ///< or main_type_alone
    const char* name;
    const char* unit;  ///< empty: none
    coding_t coding;
    const char* lowest;   ///< in the unit; empty: what the bytes can hold
    const char* highest;  ///< the same
    int multiplier = 1;   ///< of a quantity: the number on the wire is value * multiplier / divisor
    int divisor = 1;

    /// "9.001", "9" for a main type alone.
    QString id() const;

    int bits() const;
    int bytes() const { return (bits() + 7) / 8; }

    /// Whether the value travels in the byte of the command itself.
    bool is_short() const { return bits() <= 6; }

    /// "0 to 100 %", "-273 to 670760 °C"; what the text looks like where that is no range.
    QString range() const;
};

}  // namespace knx
