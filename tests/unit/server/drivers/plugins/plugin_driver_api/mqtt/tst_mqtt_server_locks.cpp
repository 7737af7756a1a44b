// mqtt_server_t: what is done under the lock of enable_change, and behind the routes' barrier.
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <mutex>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"
#include "kit/opened.h"
#include "kit/settle.h"
#include "kit/waiting_call_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"

using interfaces::data_api_elements_t;
using interfaces::mqtt_server_api_v1_t;
using interfaces::mqtt_server_t;

KIT_OPEN(server_mutex_t, mqtt_server_t, mutex, base::mutex_t);
KIT_OPEN(server_barrier_t, mqtt_server_t, route_barrier, base::mutex_t);

class tst_mqtt_server_locks : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        furnish(false);
        server = std::make_unique<mqtt_server_t>(elements.get(), nullptr);
        seen.clear();
    }
    void cleanup() {
        server.reset();
        clear();
    }

    void two_transitions_never_run_together() {
        mutex().lock();
        kit::waiting_call_t second([this] { server->enable_change(QStringLiteral("v1"), false); });
        const bool waited = second.waits();
        mutex().unlock();
        second.finish();
        QVERIFY(waited);
        QVERIFY(is_free());
    }

    void switching_on_is_one_transition_with_the_load() {
        follow();
        server->enable_change(QStringLiteral("v1"), true);
        QCOMPARE(seen, (QStringList{"subscribe 0 held", "subscribe 1 held", "reset 1 held",
                                    "reset 0 held", "value held", "value held", "value held",
                                    "acl held"}));
        QVERIFY(is_free());
    }

    void switching_off_is_one_transition_with_the_reset() {
        server->enable_change(QStringLiteral("v1"), true);
        kit::settle();
        follow();
        server->enable_change(QStringLiteral("v1"), false);
        QCOMPARE(seen,
                 (QStringList{"reset 1 held", "acl held", "acl held", "acl held", "reset 0 held"}));
        QVERIFY(is_free());
    }

    void a_transition_waits_until_the_routes_are_set() {
        barrier().lock();
        kit::waiting_call_t second([this] { server->enable_change(QStringLiteral("v1"), false); });
        const bool waited = second.waits();
        barrier().unlock();
        second.finish();
        QVERIFY(waited);
    }

    void routes_and_signals_are_set_as_one() {
        // The version says so when its routes come, and the collection is connected after that.
        const auto* version_1 = server->findChild<mqtt_server_api_v1_t*>();
        connect(version_1, &mqtt_server_api_v1_t::enable_change, version_1,
                [this] { seen.append(is_free(barrier()) ? "free" : "held"); });
        server->init_route_path(true);
        QCOMPARE(seen, QStringList{"held"});
        QVERIFY(is_free(barrier()));
    }

    void a_transition_only_passes_the_barrier() {
        connect(server.get(), &mqtt_server_t::subscription_status_api, this,
                [this] { seen.append(is_free(barrier()) ? "free" : "held"); });
        server->enable_change(QStringLiteral("v1"), true);
        QCOMPARE(seen, (QStringList{"free", "free"}));
    }

    void nothing_else_takes_the_lock() {
        const std::lock_guard holder(mutex());
        server->init_route_path(true);
        server->init_event(true);
        server->init_event_modify_acl(true);
        server->onUpdateElement(QStringLiteral("e-lamp"), {});
        server->handlerMessage(QStringLiteral("v1"), {}, {}, QStringLiteral("status"), {}, {},
                               true);
        server->clean_up_topic_element();
        QVERIFY(!is_free());
    }

 private:
    base::mutex_t& mutex() { return server.get()->*opened(kit::server_mutex_t()); }
    base::mutex_t& barrier() { return server.get()->*opened(kit::server_barrier_t()); }
    static bool is_free(base::mutex_t& _mutex) {
        const bool taken = _mutex.tryLock();
        if (taken) {
            _mutex.unlock();
        }
        return taken;
    }
    bool is_free() { return is_free(mutex()); }
    void note(const QString& _what) { seen.append(_what + (is_free() ? " free" : " held")); }

    /// Writes down every signal of the server and of the collection at the moment it is emitted.
    void follow() {
        connect(server.get(), &mqtt_server_t::subscription_status_api, this,
                [this](bool value) { note(QStringLiteral("subscribe %1").arg(value)); });
        connect(elements.get(), &data_api_elements_t::on_reset_api_elements, this,
                [this](bool start) { note(QStringLiteral("reset %1").arg(start)); });
        connect(elements.get(), &data_api_elements_t::value_change, this,
                [this] { note(QStringLiteral("value")); });
        connect(elements.get(), &data_api_elements_t::acl_changes, this,
                [this] { note(QStringLiteral("acl")); });
    }

    std::unique_ptr<mqtt_server_t> server;
    QStringList seen;
};

QTEST_GUILESS_MAIN(tst_mqtt_server_locks)
#include "tst_mqtt_server_locks.moc"
