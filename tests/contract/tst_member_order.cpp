// Modules that were built apart know these classes by the places of their fields.
#include <QTest>
#include <algorithm>

#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"
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

using elements_t = interfaces::data_api_elements_t;
using server_t = interfaces::mqtt_server_t;
using client_t = utility::http_read_config_server_t;

template struct fields_t<elements_t, &elements_t::api_usernames, &elements_t::lock,
                         &elements_t::elements, &elements_t::reload_timer, &elements_t::enabled,
                         &elements_t::acl>;
template struct fields_t<server_t, &server_t::object_name, &server_t::elements, &server_t::handlers,
                         &server_t::enabled, &server_t::mutex, &server_t::acl_timer>;
template struct fields_t<client_t, &client_t::flag, &client_t::options, &client_t::http>;

}  // namespace

class tst_member_order : public QObject {
    Q_OBJECT

 private Q_SLOTS:
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
