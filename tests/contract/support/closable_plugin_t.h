#pragma once

#include <dlfcn.h>

#include <QObject>
#include <QString>

#include "contract/support/loaded_libraries.h"
#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "drivers/driver/plugin_driver_interface_t.h"
#include "fakes/endpoint_thread_t.h"
#include "kit/furnish.h"

namespace support {

/// The built plugin, loaded by the loader's own calls and closed again. What is made of it must be
/// gone by then.
class closable_plugin_t {
 public:
    closable_plugin_t() : library(dlopen(PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL)) {
        if (library == nullptr) {
            qFatal("%s", dlerror());
        }
    }
    ~closable_plugin_t() { close(); }
    Q_DISABLE_COPY_MOVE(closable_plugin_t)

    void close() {
        if (library != nullptr) {
            dlclose(library);
            library = nullptr;
        }
    }

    static bool is_mapped() {
        return loaded_libraries().contains(QStringLiteral("libplugin_driver_api.so"));
    }

    /// What the library calls so; null when there is no such name.
    template <class type_t>
    type_t* symbol(const char* _name) const {
        return reinterpret_cast<type_t*>(dlsym(library, _name));
    }

    /// A new root object, seen as a driver.
    interfaces::plugin_driver_interface_t* driver() const {
        return qobject_cast<interfaces::plugin_driver_interface_t*>(
            symbol<QObject*()>("qt_plugin_instance")());
    }

 private:
    void* library;
};

/// Lets a driver of the plugin work over a small home: it starts, follows a change, stops and is
/// deleted. Without an endpoint its calls are skipped, and it loads no element.
inline void let_work(const closable_plugin_t& _plugin, fakes::endpoint_thread_t* _endpoint) {
    fakes::memory_database_t home;
    kit::furnish(home);
    const std::unique_ptr<interfaces::plugin_driver_interface_t> driver(_plugin.driver());
    driver->init_database(home.get());
    if (_endpoint != nullptr) {
        static_cast<interfaces::IComunication*>(driver->getCapability("IComunication"))
            ->init_comunication(_endpoint->get());
    }
    const auto settle = [_endpoint] {
        if (_endpoint != nullptr) {
            _endpoint->settle();
        } else {
            kit::settle();
        }
    };
    driver->start(true);
    settle();
    home.set_item(QStringLiteral("i-lamp"), QStringLiteral("1"));
    settle();
    driver->start(false);
    settle();
}

}  // namespace support
