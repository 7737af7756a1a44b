// mqtt_server_t with two versions of the API: what reaches which of them, and when.
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"
#include "kit/opened.h"
#include "kit/settle.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/receivers.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/recording_handler_t.h"

using interfaces::mqtt_server_api_v1_t;
using interfaces::mqtt_server_t;

KIT_OPEN(server_handlers_t, mqtt_server_t, handlers,
         QHash<QString, interfaces::mqtt_server_api_base_t*>);

namespace {

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

}  // namespace

class tst_mqtt_server_handlers : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        furnish(false);
        server = std::make_unique<mqtt_server_t>(elements.get(), nullptr);
        version_2 = new recording_handler_t(elements.get(), server.get());
        (server.get()->*opened(kit::server_handlers_t())).insert(latin("v2"), version_2);
    }
    void cleanup() {
        server.reset();
        clear();
    }

    void the_acl_pass_hands_each_version_the_collections_table() {
        start();
        QVERIFY(notes().filter(latin("acl")).isEmpty());
        finish_debounce();
        QCOMPARE(notes(), QStringList{latin("acl")});
        QCOMPARE(version_2->acl, elements->get_data_api_elements_acl());
        QCOMPARE(version_2->acl.value(latin("bob")).value(latin("e-lamp")), latin("readwrite"));
    }

    void a_pass_without_a_collection_has_an_empty_table() {
        start();
        version_2->acl.insert(latin("eve"), {});
        elements.reset();
        finish_debounce();
        QCOMPARE(notes().count(latin("acl")), 1);
        QVERIFY(version_2->acl.isEmpty());
    }

    void a_pass_that_is_due_runs_after_the_api_was_switched_off() {
        start();
        server->init_route_path(false);
        kit::settle();
        QVERIFY(!elements->getEnabled());
        notes();
        finish_debounce();
        QCOMPARE(notes(), QStringList{latin("acl")});
        QVERIFY(version_2->acl.isEmpty());
    }

    void clean_up_subscribes_again_and_then_runs_the_pass_at_once() {
        start();
        finish_debounce();
        notes();
        connect(server.get(), &mqtt_server_t::subscription_status_api, server.get(),
                [this](bool value) { version_2->note(latin("subscribe %1").arg(value)); });
        server->clean_up_topic_element();
        QCOMPARE(notes(), (QStringList{latin("subscribe 0"), latin("subscribe 1"), latin("acl")}));
        QCOMPARE(version_2->acl, elements->get_data_api_elements_acl());
        kit::settle();
        QVERIFY(!timer()->isActive());
    }

    void clean_up_while_a_pass_is_due_runs_none() {
        start();
        notes();
        server->clean_up_topic_element();
        QCOMPARE(notes(), QStringList());
        QVERIFY(timer()->isActive());
    }

    void updates_reach_enabled_versions_only() {
        server->onUpdateElement(latin("e"), {latin("a"), latin("b")});
        server->onUpdateElements({latin("e"), latin("f")});
        QCOMPARE(notes(), QStringList());
        version_2->setEnable(true);
        server->onUpdateElement(latin("e"), {latin("a"), latin("b")});
        server->onUpdateElements({latin("e"), latin("f")});
        QCOMPARE(notes(),
                 (QStringList{latin("changed e a,b"), latin("element e"), latin("element f")}));
    }

    void an_update_reaches_every_enabled_version() {
        start();
        version_2->setEnable(true);
        QSignalSpy published(version_1(), &mqtt_server_api_v1_t::publish_message);
        server->onUpdateElement(latin("e-night"), {});
        QCOMPARE(published.size(), 1);
        QCOMPARE(notes(), QStringList{latin("changed e-night ")});
    }

    void a_granted_element_is_published_by_each_version_enabled_or_not() {
        QVERIFY(!version_2->getEnable());
        server->init_event_modify_acl(true);
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        Q_EMIT elements->add_acl_element(latin("alice"), latin("e-lamp"), latin("read"));
        Q_EMIT elements->add_acl_element(latin("alice"), latin("e-lamp"), latin("write"));
        kit::settle();
        QCOMPARE(notes(), QStringList{latin("user alice e-lamp")});
        QCOMPARE(deleted.size(), 2);
        QVERIFY(deleted.contains(QList<QVariant>{latin("v2/alice/e-lamp"), true}));
    }

    void a_message_goes_to_its_own_version() {
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        server->handlerMessage(latin("v2"), latin("bob"), latin("client"), latin("status"),
                               latin("t"), {}, true);
        server->handlerMessage(latin("v1"), latin("bob"), latin("client"), latin("status"),
                               latin("t"), {}, true);
        QCOMPARE(notes(), QStringList{latin("retained bob t")});
        QCOMPARE(deleted, (QList<QList<QVariant>>{{latin("t"), true}}));
    }

    void a_request_is_answered_to_its_user_and_not_to_the_client() {
        version_2->router.route(
            latin("^t$"),
            [](const QString&, const QVariant&, const QStringList&,
               const QMap<QString, QVariant>&) -> QJsonValue {
                return QJsonObject{{latin("response_topic_default"), latin("p")}};
            },
            mqtt::PRIORITY_ROUTE::NORMAL);
        QSignalSpy answered(version_2, &recording_handler_t::publish_message);
        server->handlerMessage(latin("v2"), latin("bob"), latin("client"), latin("request"),
                               latin("t"), {}, false);
        QCOMPARE(answered.size(), 1);
        QCOMPARE(answered[0][0].toString(), latin("local/api/v2/bob/p"));
    }

    void the_last_enabled_version_keeps_the_api_on() {
        start();
        version_1()->setEnable(false);
        kit::settle();
        QVERIFY(elements->getEnabled());
        QCOMPARE(elements->get_data_api_elements().size(), 3);
        version_2->setEnable(false);
        server->enable_change(latin("v2"), false);
        QVERIFY(!elements->getEnabled());
    }

    void a_disabled_version_starts_a_fresh_server_when_another_is_enabled() {
        version_2->setEnable(true);
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        server->enable_change(latin("v1"), false);
        QCOMPARE(subscribed, (QList<QList<QVariant>>{{false}, {true}}));
        QVERIFY(timer()->isActive());
        QVERIFY(elements->getEnabled());
        QCOMPARE(elements->get_data_api_elements().size(), 3);
        QCOMPARE(listening(SIGNAL(remove_acl_element(const QString&, const QString&))), 1);
    }

    void routes_of_every_version_come_before_the_collections_signals_data() {
        QTest::addColumn<bool>("enable");
        QTest::newRow("start") << true;
        QTest::newRow("stop") << false;
    }
    void routes_of_every_version_come_before_the_collections_signals() {
        QFETCH(bool, enable);
        if (!enable) {
            start();
            notes();
        }
        // What is connected while each version takes its turn: still as before.
        QList<QList<int>> seen;
        const auto look = [this, &seen] { seen.append(signals_heard()); };
        version_2->heard = look;
        connect(version_1(), &mqtt_server_api_v1_t::enable_change, version_1(), look,
                Qt::DirectConnection);
        server->init_route_path(enable);
        QCOMPARE(notes(),
                 (QStringList{latin("fallback %1").arg(enable), latin("routes %1").arg(enable)}));
        QCOMPARE(seen, QList<QList<int>>(3, QList<int>(3, enable ? 0 : 1)));
        QCOMPARE(signals_heard(), QList<int>(3, enable ? 1 : 0));
    }

 private:
    mqtt_server_api_v1_t* version_1() const { return server->findChild<mqtt_server_api_v1_t*>(); }
    QTimer* timer() const { return server->findChild<QTimer*>(); }
    QStringList notes() { return std::exchange(version_2->notes, {}); }
    int listening(const char* _signal) const { return kit::receivers(elements.get(), _signal); }
    QList<int> signals_heard() const {
        return {listening(SIGNAL(on_reset_api_elements(bool, QStringList))),
                listening(SIGNAL(value_change(const QString&, const QStringList&))),
                listening(SIGNAL(acl_changes()))};
    }
    void start() {
        server->init_route_path(true);
        kit::settle();
        notes();
    }
    /// Lets the wait end now instead of after its 10 seconds.
    void finish_debounce() {
        QVERIFY(timer()->isActive());
        QSignalSpy fired(timer(), &QTimer::timeout);
        timer()->setInterval(0);
        QVERIFY(fired.wait());
        timer()->setInterval(10000);
    }

    std::unique_ptr<mqtt_server_t> server;
    recording_handler_t* version_2 = nullptr;
};

QTEST_GUILESS_MAIN(tst_mqtt_server_handlers)
#include "tst_mqtt_server_handlers.moc"
