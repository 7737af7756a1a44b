#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// One input, of the fuzzer or of the corpus. Ends the program when something does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size);

/// Ends the program: the fuzzer keeps the input, ctest fails.
#define FUZZ_EXPECT(condition) \
    do {                       \
        if (!(condition)) {    \
            __builtin_trap();  \
        }                      \
    } while (false)
