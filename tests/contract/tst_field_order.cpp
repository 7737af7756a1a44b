// Modules that were built apart from the plugin find these fields by their place.
#include <QTest>
#include <atomic>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t.h"
#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"
#include "kit/opened.h"

using interfaces::data_api_element_object_t;
using interfaces::data_api_elements_t;
using interfaces::data_api_t;
using interfaces::IComunication;
using interfaces::mqtt_server_api_base_t;
using interfaces::mqtt_server_t;
using interfaces::plugin_driver_api_t;
using interfaces::plugin_driver_interface_t;

KIT_OPEN(driver_id_t, plugin_driver_interface_t, id, QString);
KIT_OPEN(driver_name_t, plugin_driver_interface_t, name, QString);
KIT_OPEN(driver_version_t, plugin_driver_interface_t, version, QString);
KIT_OPEN(driver_use_topic_t, plugin_driver_interface_t, use_persistent_topic, bool);
KIT_OPEN(driver_database_t, plugin_driver_interface_t, database, QPointer<database::database_t>);
KIT_OPEN(driver_pattern_t, plugin_driver_interface_t, valid_name_pattern, QString);
KIT_OPEN(driver_reserved_t, plugin_driver_interface_t, reserved, void*);
KIT_OPEN(driver_configuration_t, plugin_driver_interface_t, configuration, QJsonObject);
KIT_OPEN(driver_list_1_t, plugin_driver_interface_t, reserved_list_1, QList<QString>);
KIT_OPEN(driver_text_t, plugin_driver_interface_t, reserved_text, QString);
KIT_OPEN(driver_list_2_t, plugin_driver_interface_t, reserved_list_2, QList<QString>);

KIT_OPEN(plugin_elements_t, plugin_driver_api_t, elements, QPointer<data_api_elements_t>);
KIT_OPEN(plugin_server_t, plugin_driver_api_t, mqtt_server, QPointer<mqtt_server_t>);

KIT_OPEN(handler_enabled_t, mqtt_server_api_base_t, enabled, std::atomic<bool>);
KIT_OPEN(handler_elements_t, mqtt_server_api_base_t, elements, QPointer<data_api_elements_t>);
KIT_OPEN(handler_router_t, mqtt_server_api_base_t, router, mqtt::mqtt_router_t);
KIT_OPEN(handler_root_t, mqtt_server_api_base_t, api_root, QString);
KIT_OPEN(handler_version_t, mqtt_server_api_base_t, version_word, QString);

KIT_OPEN(data_name_t, data_api_t, name, const QString);
KIT_OPEN(data_database_t, data_api_t, database, QPointer<database::database_t>);

using texts_t = QHash<QString, QString>;
KIT_OPEN(element_initialising_t, data_api_element_object_t, initialising, bool);
KIT_OPEN(element_events_t, data_api_element_object_t, events_mutex, base::mutex_t);
KIT_OPEN(element_functions_t, data_api_element_object_t, functions_mutex, base::mutex_t);
KIT_OPEN(element_id_t, data_api_element_object_t, id_element, const QString);
KIT_OPEN(element_name_t, data_api_element_object_t, name_element, QString);
KIT_OPEN(element_type_t, data_api_element_object_t, type, int);
KIT_OPEN(element_ids_t, data_api_element_object_t, function_ids, QHash<QString, QStringList>);
KIT_OPEN(element_names_t, data_api_element_object_t, function_names, texts_t);
KIT_OPEN(element_values_t, data_api_element_object_t, function_values, texts_t);
KIT_OPEN(element_permissions_t, data_api_element_object_t, permissions, QHash<QString, quint64>);
KIT_OPEN(element_permission_t, data_api_element_object_t, permission, bool);
KIT_OPEN(element_acl_t, data_api_element_object_t, acl, texts_t);

namespace {

using offsets_t = QList<std::size_t>;

/// Where the fields would stand if they followed each other from @p _start on.
template <class... Fields>
offsets_t in_a_row(std::size_t _start) {
    offsets_t offsets;
    std::size_t next = _start;
    const auto place = [&](std::size_t size, std::size_t alignment) {
        const std::size_t offset = (next + alignment - 1) / alignment * alignment;
        offsets.append(offset);
        next = offset + size;
    };
    (place(sizeof(typename Fields::field_t), alignof(typename Fields::field_t)), ...);
    return offsets;
}

/// Where they do stand.
template <class... Fields, class Object>
offsets_t places(const Object& _object) {
    const auto address = [](const auto& part) {
        return reinterpret_cast<std::uintptr_t>(std::addressof(part));
    };
    return {std::size_t(address(_object.*opened(Fields())) - address(_object))...};
}

/// A version of the API that does nothing.
class handler_t : public mqtt_server_api_base_t {
 public:
    handler_t() : mqtt_server_api_base_t(QStringLiteral("v9"), nullptr, nullptr) {}
    QJsonObject packet_error(QJsonObject, const int&, QString) override { return {}; }
    packets_t packet_update(const QString&, const QStringList&) override { return {}; }
    packets_t packet_update(const QStringList&) override { return {}; }
    packets_t packet_update(const QString&) override { return {}; }
    packets_t packet_update(const QString&, const QString&) override { return {}; }
    void init_no_route_path() override {}
    void init_route_path() override {}
    bool handlerMessageRetained(const QString&, const QString&, const QJsonObject&) override {
        return true;
    }
    QString topic_update_element(const QString&, const QString&) override { return {}; }
    void populate_acl(acl_t) override {}
};

}  // namespace

class tst_field_order : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_driver_base() {
        const plugin_driver_api_t driver;
        const plugin_driver_interface_t& base = driver;
        compare<kit::driver_id_t, kit::driver_name_t, kit::driver_version_t,
                kit::driver_use_topic_t, kit::driver_database_t, kit::driver_pattern_t,
                kit::driver_reserved_t, kit::driver_configuration_t, kit::driver_list_1_t,
                kit::driver_text_t, kit::driver_list_2_t>(base, sizeof(QObject));
    }

    void the_plugin() {
        const plugin_driver_api_t driver;
        compare<kit::plugin_elements_t, kit::plugin_server_t>(
            driver, sizeof(plugin_driver_interface_t) + sizeof(IComunication));
    }

    void the_version_handlers_base() {
        const handler_t handler;
        const mqtt_server_api_base_t& base = handler;
        compare<kit::handler_enabled_t, kit::handler_elements_t, kit::handler_router_t,
                kit::handler_root_t, kit::handler_version_t>(base, sizeof(QObject));
        QCOMPARE(sizeof(kit::handler_enabled_t::field_t), sizeof(bool));
    }

    void the_data_base() {
        const data_api_t data(nullptr, nullptr);
        compare<kit::data_name_t, kit::data_database_t>(data, sizeof(QObject));
    }

    void the_element() {
        const data_api_element_object_t element(nullptr, QStringLiteral("e"), nullptr);
        compare<kit::element_initialising_t, kit::element_events_t, kit::element_functions_t,
                kit::element_id_t, kit::element_name_t, kit::element_type_t, kit::element_ids_t,
                kit::element_names_t, kit::element_values_t, kit::element_permissions_t,
                kit::element_permission_t, kit::element_acl_t>(element, sizeof(data_api_t));
    }

 private:
    /// Fails unless the fields stand in this order from @p _start on, with nothing in between.
    template <class... Fields, class Object>
    static void compare(const Object& _object, std::size_t _start) {
        QCOMPARE(places<Fields...>(_object), in_a_row<Fields...>(_start));
    }
};

QTEST_GUILESS_MAIN(tst_field_order)
#include "tst_field_order.moc"
