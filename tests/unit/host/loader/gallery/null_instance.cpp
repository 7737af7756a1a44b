#include "plugin_note.h"

GALLERY_NOTE("org.kelma.torlan.interfaces");
GALLERY_QUERY()

extern "C" QObject* qt_plugin_instance() {
    return nullptr;
}
