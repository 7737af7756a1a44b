#pragma once

/// Type codes of elements that have rules of their own.
namespace database::element_type {

inline constexpr int scenario = 8;
inline constexpr int thermostat = 17;

/// Whether the API shows elements of this type code: all but -1, 11, 14, 18 and 19.
constexpr bool is_exposed(int _type) {
    // Bit n stands for the code n - 1.
    constexpr unsigned int hidden = 0x189001;
    constexpr unsigned int last_bit = 20;
    const unsigned int bit = static_cast<unsigned int>(_type) + 1U;
    return bit > last_bit || ((hidden >> bit) & 1U) == 0;
}

}  // namespace database::element_type
