// Modules that were built apart know these classes by the places of their fields.
#include <QTest>
#include <algorithm>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"
#include "http/http_t.h"
#include "utility/http_read_config_server_t.h"
#include "utility/torlan_option_t.h"

namespace {

/// Where the fields of an object are, in the order in which its class's contract has them.
template <class Class>
QList<std::ptrdiff_t> (*offsets_of)(const Class&) = nullptr;

/// Fills offsets_of. To be instantiated explicitly: there, private fields may be named.
template <class Class, auto... Fields>
struct fields_t {
    static QList<std::ptrdiff_t> offsets(const Class& _object) {
        return {(reinterpret_cast<const char*>(&(_object.*Fields)) -
                 reinterpret_cast<const char*>(&_object))...};
    }
    inline static const auto filled = offsets_of<Class> = &offsets;
};

/// The fields stand in order, the first one where the base ends.
template <class Class>
bool is_in_order(const Class& _object, std::size_t _base) {
    const QList<std::ptrdiff_t> offsets = offsets_of<Class>(_object);
    return offsets.constFirst() == std::ptrdiff_t(_base) &&
           std::is_sorted(offsets.begin(), offsets.end());
}

using driver_t = interfaces::plugin_driver_interface_t;
using plugin_t = interfaces::plugin_driver_api_t;
using data_t = interfaces::data_api_t;
using element_t = interfaces::data_api_element_object_t;
using elements_t = interfaces::data_api_elements_t;
using handler_t = interfaces::mqtt_server_api_base_t;
using server_t = interfaces::mqtt_server_t;
using client_t = utility::http_read_config_server_t;

template struct fields_t<driver_t, &driver_t::id, &driver_t::name, &driver_t::version,
                         &driver_t::use_persistent_topic, &driver_t::database,
                         &driver_t::valid_name_pattern, &driver_t::reserved,
                         &driver_t::configuration, &driver_t::reserved_list_1,
                         &driver_t::reserved_text, &driver_t::reserved_list_2>;
template struct fields_t<plugin_t, &plugin_t::elements, &plugin_t::mqtt_server>;
template struct fields_t<data_t, &data_t::name, &data_t::database>;
template struct fields_t<element_t, &element_t::initialising, &element_t::events_mutex,
                         &element_t::functions_mutex, &element_t::id_element,
                         &element_t::name_element, &element_t::type, &element_t::function_ids,
                         &element_t::function_names, &element_t::function_values,
                         &element_t::permissions, &element_t::permission, &element_t::acl>;
template struct fields_t<elements_t, &elements_t::api_usernames, &elements_t::lock,
                         &elements_t::elements, &elements_t::reload_timer, &elements_t::enabled,
                         &elements_t::acl>;
template struct fields_t<handler_t, &handler_t::enabled, &handler_t::elements, &handler_t::router,
                         &handler_t::api_root, &handler_t::version_word>;
template struct fields_t<server_t, &server_t::object_name, &server_t::elements, &server_t::handlers,
                         &server_t::enabled, &server_t::mutex, &server_t::acl_timer>;
template struct fields_t<client_t, &client_t::flag, &client_t::options, &client_t::http>;

}  // namespace

class tst_member_order : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_driver() {
        QVERIFY(is_in_order<driver_t>(plugin_t(), sizeof(QObject)));
        QCOMPARE(sizeof(driver_t), sizeof(QObject) + 5 * sizeof(QString) + 3 * sizeof(void*) +
                                       sizeof(QPointer<QObject>) + 2 * sizeof(QList<QString>));
    }

    void the_plugin() {
        QVERIFY(is_in_order(plugin_t(), sizeof(driver_t) + sizeof(interfaces::IComunication)));
    }

    void the_data() { QVERIFY(is_in_order(data_t(nullptr, nullptr), sizeof(QObject))); }

    void the_element() {
        QVERIFY(is_in_order(element_t(nullptr, QStringLiteral("e"), nullptr), sizeof(data_t)));
    }

    void the_version_handler() {
        const interfaces::mqtt_server_api_v1_t handler(nullptr, nullptr);
        QVERIFY(is_in_order<handler_t>(handler, sizeof(QObject)));
    }

    void the_server() { QVERIFY(is_in_order(server_t(nullptr, nullptr), sizeof(QObject))); }

    void the_collection() {
        QVERIFY(is_in_order(elements_t(nullptr, nullptr), sizeof(interfaces::data_api_t)));
    }

    void the_configuration_client_is_three_words() {
        QVERIFY(is_in_order(client_t(nullptr), sizeof(QObject)));
        QCOMPARE(sizeof(client_t), sizeof(QObject) + 3 * sizeof(void*));
    }
};

QTEST_GUILESS_MAIN(tst_member_order)
#include "tst_member_order.moc"
