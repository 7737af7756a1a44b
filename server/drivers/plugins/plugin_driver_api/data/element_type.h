#pragma once

namespace interfaces {

/// Whether the API shows elements of this type code: all but -1, 11, 14, 18 and 19.
constexpr bool is_exposed_element_type(int _type) {
    // Bit n stands for the code n - 1.
    constexpr unsigned int hidden = 0x189001;
    constexpr unsigned int last_bit = 20;
    const unsigned int bit = static_cast<unsigned int>(_type) + 1U;
    return bit > last_bit || ((hidden >> bit) & 1U) == 0;
}

}  // namespace interfaces
