#pragma once

#include <QObject>
#include <algorithm>
#include <cstddef>
#include <cstdint>

/// A plugin metadata note with the interface identifier @p Iid and nothing else to tell.
template <std::size_t IidSize>
struct alignas(void*) plugin_note_t {
    std::uint32_t name_size = 12;
    std::uint32_t descriptor_size = sizeof(plugin_note_t::descriptor);
    std::uint32_t type = 0x74510001;
    char name[12] = "qt-project!";
    unsigned char descriptor[4 + 4 + IidSize - 1 + 6] = {1, 6, 5, 0, 0xBF, 2, 0x78, IidSize - 1};

    constexpr explicit plugin_note_t(const char (&_iid)[IidSize]) {
        constexpr unsigned char rest[] = {3, 0x61, 'x', 4, 0xA0, 0xFF};
        std::copy_n(_iid, IidSize - 1, descriptor + 8);
        std::copy_n(rest, sizeof rest, descriptor + 8 + IidSize - 1);
    }
};

struct plugin_query_t {
    const void* data;
    std::size_t size;
};

#define GALLERY_NOTE(_iid)                                           \
    __attribute__((section(".note.qt.metadata"), used,               \
                   aligned(alignof(void*)))) constexpr plugin_note_t \
    gallery_note(_iid)

#define GALLERY_QUERY()                                                   \
    extern "C" plugin_query_t qt_plugin_query_metadata_v2() {             \
        return {gallery_note.descriptor, sizeof gallery_note.descriptor}; \
    }
