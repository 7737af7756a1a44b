// Its note says driver, its entry point says something else.
#include "plugin_note.h"

GALLERY_NOTE("org.kelma.torlan.interfaces");

static constexpr plugin_note_t answer("org.example.other.interface");

extern "C" plugin_query_t qt_plugin_query_metadata_v2() {
    return {answer.descriptor, sizeof answer.descriptor};
}

extern "C" QObject* qt_plugin_instance() {
    return new QObject;
}
