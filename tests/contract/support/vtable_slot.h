#pragma once

#include <cstddef>
#include <cstring>

namespace support {

/// The place of a virtual operation in its class's table, counted in pointers. Reads the layout
/// that GCC and Clang share: the first word of the member pointer is the byte offset, plus one
/// where code addresses may be odd.
template <class Member>
std::size_t vtable_slot(Member _member) {
    std::size_t words[2] = {};
    static_assert(sizeof _member == sizeof words);
    std::memcpy(words, &_member, sizeof words);
    return words[0] / sizeof(void*);
}

}  // namespace support
