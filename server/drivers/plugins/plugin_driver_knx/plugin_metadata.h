#pragma once

#include <cstddef>

/// What the host reads before it loads the driver: pointer to the descriptor and its length. The
/// layout is that of Qt's own plugin metadata pair.
struct plugin_metadata_t {
    const void* data;
    std::size_t size;
};

/// The 92-byte descriptor. Never allocates, never constructs the driver. Any thread.
extern "C" __attribute__((visibility("default"))) plugin_metadata_t qt_plugin_query_metadata_v2();
