#include "drivers/plugins/plugin_driver_knx/plugin_metadata.h"

#include <cstdint>

namespace {

// Written by hand for the same reasons as the API driver's, and with the same labels.
constexpr std::size_t descriptor_size = 92;

/// An ELF note. Aligned and so padded to the pointer size: Qt's loaders find no other.
struct alignas(void*) metadata_note_t {
    std::uint32_t name_size = 12;
    std::uint32_t descriptor_size = ::descriptor_size;
    std::uint32_t type = 0x74510001;
    char name[12] = "qt-project!";
    // clang-format off
    unsigned char descriptor[::descriptor_size] = {
        0x01, 0x06, 0x05, 0x00,  // format 1, Qt 6.5, release
        0xBF,                    // map of indefinite length
        0x02, 0x78, 0x1B,        // 2: text of 27
        'o', 'r', 'g', '.', 'k', 'e', 'l', 'm', 'a', '.', 't', 'o', 'r', 'l', 'a', 'n', '.',
        'i', 'n', 't', 'e', 'r', 'f', 'a', 'c', 'e', 's',
        0x03, 0x73,              // 3: text of 19
        'p', 'l', 'u', 'g', 'i', 'n', '_', 'd', 'r', 'i', 'v', 'e', 'r', '_', 'k', 'n', 'x', '_', 't',
        0x04, 0xA1,              // 4: map of one
        0x69, 'i', 'n', 't', 'e', 'r', 'f', 'a', 'c', 'e',
        0xA2,                    // map of two
        0x64, 'p', 'o', 'r', 't', 0x68, 'd', 'e', 'v', '/', 'x', 'x', 'x', 'x',
        0x64, 't', 'y', 'p', 'e', 0x62, 'T', 'P',
        0xFF,
    };
    // clang-format on
};

static_assert(offsetof(metadata_note_t, descriptor) == 24);
static_assert(sizeof(metadata_note_t) % sizeof(void*) == 0);

// The alignment stands on the object too: the compiler may raise a type's, but not this one.
__attribute__((section(".note.qt.metadata"), used,
               aligned(alignof(void*)))) constexpr metadata_note_t note;

}  // namespace

extern "C" plugin_metadata_t qt_plugin_query_metadata_v2() {
    return {note.descriptor, sizeof note.descriptor};
}
