#pragma once

#include <QLibrary>
#include <memory>

#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "drivers/driver/plugin_driver_interface_t.h"
#include "fakes/endpoint_thread_t.h"

namespace support {

/// The built plugin, loaded and used as the server does: by its two entry points. The library
/// stays loaded until the program ends.
class loaded_plugin_t {
 public:
    using instance_t = QObject* (*)();
    /// The layout of Qt's plugin metadata pair.
    struct metadata_t {
        const void* data;
        std::size_t size;
    };
    using query_t = metadata_t (*)();

    loaded_plugin_t() : library(QStringLiteral(PLUGIN_PATH)) { library.load(); }

    QString error() const { return library.errorString(); }
    bool is_loaded() const { return library.isLoaded(); }
    instance_t instance() {
        return reinterpret_cast<instance_t>(library.resolve("qt_plugin_instance"));
    }
    query_t query() {
        return reinterpret_cast<query_t>(library.resolve("qt_plugin_query_metadata_v2"));
    }

    /// The root object as a driver; the caller deletes it.
    std::unique_ptr<interfaces::plugin_driver_interface_t> driver() {
        return std::unique_ptr<interfaces::plugin_driver_interface_t>(
            qobject_cast<interfaces::plugin_driver_interface_t*>(instance()()));
    }

    /// A driver that has its database and endpoint and waits for its start; null: it refused.
    std::unique_ptr<interfaces::plugin_driver_interface_t> driver(
        database::database_t* _database, comunication::protoserver_t* _endpoint) {
        auto made = driver();
        if (made == nullptr || !made->init_database(_database)) {
            return nullptr;
        }
        auto* comunication =
            static_cast<interfaces::IComunication*>(made->getCapability("IComunication"));
        if (comunication == nullptr || !comunication->init_comunication(_endpoint)) {
            return nullptr;
        }
        return made;
    }

 private:
    QLibrary library;
};

}  // namespace support
