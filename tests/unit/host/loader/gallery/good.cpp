#include "drivers/driver/plugin_driver_interface_t.h"
#include "plugin_note.h"

GALLERY_NOTE("org.kelma.torlan.interfaces");
GALLERY_QUERY()

namespace {

class good_t : public interfaces::plugin_driver_interface_t {
    Q_OBJECT
    Q_INTERFACES(interfaces::plugin_driver_interface_t)

 public:
    good_t() : plugin_driver_interface_t(QStringLiteral("good"), QStringLiteral("1"), false) {}
    void init_event_to_dispatcher(bool, QObject*) override {}
    bool finalize_database_initialization() override { return true; }
    void start(bool) override {}
};

}  // namespace

extern "C" QObject* qt_plugin_instance() {
    return new good_t;
}

#include "good.moc"
