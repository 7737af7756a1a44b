#pragma once

#include <QtGlobal>

/// What the process holds, in bytes.
struct memory_use_t {
    qint64 heap = 0;      ///< handed out by malloc and not given back
    qint64 resident = 0;  ///< pages in memory; under an emulator with the emulator's own

    static memory_use_t now();

    memory_use_t operator-(const memory_use_t& _other) const {
        return {heap - _other.heap, resident - _other.resident};
    }
};
