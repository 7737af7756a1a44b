#include <cstdlib>

#include "plugin_note.h"

GALLERY_NOTE("org.example.other.interface");
GALLERY_QUERY()

namespace {

// The loader must not run any code of a plugin that is not a driver.
__attribute__((constructor)) void on_load() {
    std::abort();
}

}  // namespace

extern "C" QObject* qt_plugin_instance() {
    return nullptr;
}
