// Hosts that were built apart from the plugin call these operations by their place.
#include <QTest>

#include "contract/support/vtable_slot.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t.h"
#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"

using interfaces::IComunication;
using interfaces::mqtt_server_api_base_t;
using interfaces::plugin_driver_api_t;
using interfaces::plugin_driver_interface_t;
using support::vtable_slot;

class tst_virtual_order : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_driver_base_follows_qobjects_twelve() {
        using base_t = plugin_driver_interface_t;
        QCOMPARE(vtable_slot(&base_t::getCapability), 12U);
        QCOMPARE(vtable_slot(&base_t::init_event_to_dispatcher), 13U);
        QCOMPARE(vtable_slot(&base_t::finalize_database_initialization), 14U);
        QCOMPARE(vtable_slot(&base_t::init_database), 15U);
        QCOMPARE(vtable_slot(&base_t::start), 16U);
    }

    void the_capabilitys_destructors_stand_third() {
        QCOMPARE(vtable_slot(&IComunication::finalize_comunication_initialization), 0U);
        QCOMPARE(vtable_slot(&IComunication::init_comunication_event), 1U);
        QCOMPARE(vtable_slot(&IComunication::init_comunication), 4U);
    }

    void the_version_handlers_ten_stand_in_order() {
        using base_t = mqtt_server_api_base_t;
        using packets_t = base_t::packets_t;
        using changed_t = packets_t (base_t::*)(const QString&, const QStringList&);
        using ids_t = packets_t (base_t::*)(const QStringList&);
        using one_t = packets_t (base_t::*)(const QString&);
        using user_t = packets_t (base_t::*)(const QString&, const QString&);
        QCOMPARE(vtable_slot(&base_t::packet_error), 12U);
        QCOMPARE(vtable_slot(static_cast<changed_t>(&base_t::packet_update)), 13U);
        QCOMPARE(vtable_slot(static_cast<ids_t>(&base_t::packet_update)), 14U);
        QCOMPARE(vtable_slot(static_cast<one_t>(&base_t::packet_update)), 15U);
        QCOMPARE(vtable_slot(static_cast<user_t>(&base_t::packet_update)), 16U);
        QCOMPARE(vtable_slot(&base_t::init_no_route_path), 17U);
        QCOMPARE(vtable_slot(&base_t::init_route_path), 18U);
        QCOMPARE(vtable_slot(&base_t::handlerMessageRetained), 19U);
        QCOMPARE(vtable_slot(&base_t::topic_update_element), 20U);
        QCOMPARE(vtable_slot(&base_t::populate_acl), 21U);
    }

    void the_endpoint_is_the_capabilitys_first_field() {
        // A host may read it there: the table pointer, the endpoint, then the lock.
        class opened_t : public IComunication {
         public:
            bool finalize_comunication_initialization() override { return true; }
            void init_comunication_event(bool) override {}
            std::ptrdiff_t endpoint_offset() { return offset(&comunication); }
            std::ptrdiff_t lock_offset() { return offset(&lock); }

         private:
            std::ptrdiff_t offset(const void* _field) const {
                return static_cast<const char*>(_field) - reinterpret_cast<const char*>(this);
            }
        };
        opened_t opened;
        QCOMPARE(opened.endpoint_offset(), std::ptrdiff_t(sizeof(void*)));
        QCOMPARE(opened.lock_offset(), std::ptrdiff_t(2 * sizeof(void*)));
    }

    void the_base_shares_the_plugins_address_and_the_capability_does_not() {
        plugin_driver_api_t driver;
        const auto* object = static_cast<void*>(&driver);
        QCOMPARE(static_cast<void*>(static_cast<plugin_driver_interface_t*>(&driver)), object);
        QVERIFY(static_cast<void*>(static_cast<IComunication*>(&driver)) != object);
    }
};

QTEST_GUILESS_MAIN(tst_virtual_order)
#include "tst_virtual_order.moc"
