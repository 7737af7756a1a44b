// Entry point of the loadable driver.
#include <QPointer>

#include "drivers/plugins/plugin_driver_knx/plugin_driver_knx_t.h"

/// The one root object, made on the first call and made anew when the host has deleted it. The
/// host owns it. Host's loader thread only.
extern "C" __attribute__((visibility("default"))) QObject* qt_plugin_instance() {
    static QPointer<QObject> instance;
    if (instance.isNull()) {
        instance = new interfaces::plugin_driver_knx_t();
    }
    return instance;
}
