#include "plugin_note.h"

GALLERY_NOTE("org.kelma.torlan.interfaces");
GALLERY_QUERY()

extern "C" QObject* nobody_has_this_function();

extern "C" QObject* qt_plugin_instance() {
    return nobody_has_this_function();
}
