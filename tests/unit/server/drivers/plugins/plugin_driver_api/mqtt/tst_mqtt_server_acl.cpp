// mqtt_server_t: enabling, the debounced ACL pass and single ACL changes.
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"
#include "kit/settle.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"

using interfaces::data_api_elements_t;
using interfaces::mqtt_server_api_v1_t;
using interfaces::mqtt_server_t;

namespace {

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

QString topic(const char* _user, const char* _id) {
    return latin("local/api/v1/%1/status/elements/objects_list/%2").arg(latin(_user), latin(_id));
}

QStringList first_arguments(const QSignalSpy& _spy) {
    QStringList texts;
    for (const QList<QVariant>& call : _spy) {
        texts.append(call[0].toString());
    }
    texts.sort();
    return texts;
}

}  // namespace

class tst_mqtt_server_acl : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        furnish(false);
        server = std::make_unique<mqtt_server_t>(elements.get(), nullptr);
    }
    void cleanup() {
        server.reset();
        clear();
    }

    void enabling_has_an_order() {
        // What holds at each of the two subscription changes, and whether the ACL signals are
        // connected yet: bob's is sent before, alice's after.
        QStringList seen;
        connect(server.get(), &mqtt_server_t::subscription_status_api, server.get(),
                [&](bool subscribed) {
                    seen.append(QStringLiteral("%1 timer %2 elements %3")
                                    .arg(subscribed)
                                    .arg(timer()->isActive())
                                    .arg(elements->get_data_api_elements().size()));
                    Q_EMIT elements->add_acl_element(subscribed ? latin("alice") : latin("bob"),
                                                     latin("e-lamp"), latin("read"));
                });
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        server->init_route_path(true);
        QVERIFY(seen.isEmpty());  // enable_change comes through the queue
        kit::settle();
        QCOMPARE(seen, (QStringList{latin("0 timer 0 elements 0"), latin("1 timer 1 elements 0")}));
        QCOMPARE(elements->get_data_api_elements().size(), 3);
        QVERIFY(elements->getEnabled());
        QCOMPARE(first_arguments(published).count(topic("alice", "e-lamp")), 2);
        QCOMPARE(first_arguments(published).count(topic("bob", "e-lamp")), 1);
    }

    void enabling_again_does_nothing() {
        start();
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        QSignalSpy reset(elements.get(), &data_api_elements_t::on_reset_api_elements);
        server->enable_change(latin("v1"), true);
        QVERIFY(subscribed.isEmpty() && reset.isEmpty());
    }

    void disabling_while_a_version_is_enabled_does_nothing() {
        start();
        server->enable_change(latin("v1"), false);
        QVERIFY(elements->getEnabled());
        QCOMPARE(elements->get_data_api_elements().size(), 3);
    }

    void disabling_empties_the_collection_and_leaves_the_rest() {
        start();
        finish_debounce();
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        server->init_route_path(false);
        kit::settle();
        QVERIFY(!elements->getEnabled());
        QVERIFY(elements->get_data_api_elements().isEmpty());
        QVERIFY(subscribed.isEmpty());
        // The signals of single ACL changes stay connected.
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        Q_EMIT elements->remove_acl_element(latin("alice"), latin("gone"));
        kit::settle();
        QVERIFY(first_arguments(deleted).contains(topic("alice", "gone")));
    }

    void disabling_what_is_disabled_does_nothing() {
        elements->setEnabled(true);
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        QSignalSpy reset(elements.get(), &data_api_elements_t::on_reset_api_elements);
        server->enable_change(latin("v1"), false);
        QVERIFY(subscribed.isEmpty() && reset.isEmpty());
        QVERIFY(elements->getEnabled());
        QVERIFY(!timer()->isActive());
    }

    void a_second_start_announces_again() {
        start();
        server->init_route_path(false);
        kit::settle();
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        start();
        QCOMPARE(subscribed, (QList<QList<QVariant>>{{false}, {true}}));
        QCOMPARE(first_arguments(published),
                 (QStringList{topic("alice", "e-lamp"), topic("alice", "e-night"),
                              topic("alice", "e-therm"), topic("bob", "e-lamp")}));
    }

    void a_load_publishes_every_function() {
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        start();
        for (const QList<QVariant>& call : std::as_const(published)) {
            if (call[0].toString() == topic("bob", "e-lamp")) {
                QCOMPARE(
                    call[1].toJsonObject()[latin("data")][latin("functions")].toObject().keys(),
                    (QStringList{latin("dim"), latin("execute")}));
            }
        }
        QCOMPARE(published.size(), 4);
    }

    void acl_changes_in_a_row_lead_to_one_pass() {
        start();
        QSignalSpy fired(timer(), &QTimer::timeout);
        for (int i = 0; i < 10; ++i) {
            Q_EMIT elements->acl_changes();
            kit::settle();
            QVERIFY(timer()->isActive());
        }
        QVERIFY(fired.isEmpty());
        finish_debounce();
        QCOMPARE(fired.size(), 1);
    }

    void a_change_restarts_the_whole_wait() {
        start();
        timer()->start(5000);
        timer()->setInterval(10000);
        Q_EMIT elements->acl_changes();
        kit::settle();
        QVERIFY(timer()->remainingTime() > 9000);
    }

    void the_pass_does_not_start_the_wait_again_and_publishes_nothing() {
        start();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        finish_debounce();
        kit::settle();
        QVERIFY(!timer()->isActive());
        QVERIFY(published.isEmpty() && deleted.isEmpty() && subscribed.isEmpty());
    }

    void withdrawals_of_the_same_burst_come_before_the_wait() {
        start();
        finish_debounce();
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        elements->reset();  // withdraws element by element, each with an acl_changes()
        kit::settle();
        QCOMPARE(first_arguments(deleted),
                 (QStringList{topic("alice", "e-lamp"), topic("alice", "e-night"),
                              topic("alice", "e-therm"), topic("bob", "e-lamp"),
                              topic("bob", "e-night"), topic("bob", "e-therm")}));
        QVERIFY(timer()->isActive());
    }

    void acl_words_data() {
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("waiting");
        QTest::addColumn<int>("deletions");
        QTest::addColumn<int>("publications");
        const auto row = [](const char* word, bool waiting, int deletions, int publications) {
            QTest::newRow(qPrintable(latin("%1, %2").arg(latin(word)).arg(waiting)))
                << latin(word) << waiting << deletions << publications;
        };
        for (const bool waiting : {false, true}) {
            row("deny", waiting, waiting ? 0 : 1, 0);
            row("write", waiting, waiting ? 0 : 1, 0);
            row("read", waiting, 0, 1);
            row("readwrite", waiting, 0, 1);
            row("Read", waiting, 0, 0);
            row("readwrite ", waiting, 0, 0);
            row("", waiting, 0, 0);
        }
    }
    void acl_words() {
        QFETCH(QString, word);
        QFETCH(bool, waiting);
        QFETCH(int, deletions);
        QFETCH(int, publications);
        start();
        if (!waiting) {
            finish_debounce();
        }
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        Q_EMIT elements->add_acl_element(latin("bob"), latin("e-lamp"), word);
        kit::settle();
        QCOMPARE(deleted, (QList<QList<QVariant>>(deletions, {topic("bob", "e-lamp"), true})));
        QCOMPARE(first_arguments(published), QStringList(publications, topic("bob", "e-lamp")));
        QCOMPARE(timer()->isActive(), waiting);
    }

    void a_wait_that_is_stopped_from_outside_suppresses_no_deletion() {
        start();
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        timer()->stop();
        Q_EMIT elements->add_acl_element(latin("bob"), latin("e-lamp"), latin("deny"));
        kit::settle();
        QCOMPARE(deleted, (QList<QList<QVariant>>{{topic("bob", "e-lamp"), true}}));
    }

    void a_withdrawal_is_a_denial_data() {
        QTest::addColumn<bool>("waiting");
        QTest::newRow("idle") << false;
        QTest::newRow("waiting") << true;
    }
    void a_withdrawal_is_a_denial() {
        QFETCH(bool, waiting);
        start();
        if (!waiting) {
            finish_debounce();
        }
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        Q_EMIT elements->remove_acl_element(latin("alice"), latin("e-night"));
        kit::settle();
        QCOMPARE(first_arguments(deleted),
                 waiting ? QStringList() : QStringList{topic("alice", "e-night")});
    }

    void acl_signals_connect_once_and_disconnect() {
        server->init_event_modify_acl(true);
        server->init_event_modify_acl(true);
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        Q_EMIT elements->remove_acl_element(latin("a"), latin("x"));
        Q_EMIT elements->add_acl_element(latin("a"), latin("y"), latin("deny"));
        QVERIFY(deleted.isEmpty());
        kit::settle();
        QCOMPARE(deleted.size(), 2);
        server->init_event_modify_acl(false);
        Q_EMIT elements->remove_acl_element(latin("a"), latin("x"));
        Q_EMIT elements->add_acl_element(latin("a"), latin("y"), latin("deny"));
        kit::settle();
        QCOMPARE(deleted.size(), 2);
    }

    void clean_up_subscribes_again_unless_a_pass_is_due() {
        start();
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        server->clean_up_topic_element();
        QVERIFY(subscribed.isEmpty());
        finish_debounce();
        server->clean_up_topic_element();
        QCOMPARE(subscribed, (QList<QList<QVariant>>{{false}, {true}}));
        kit::settle();
        QVERIFY(!timer()->isActive());
        server->clean_up_topic_element();
        QCOMPARE(subscribed.size(), 4);
    }

 private:
    QTimer* timer() const { return server->findChild<QTimer*>(); }
    void start() {
        server->init_route_path(true);
        kit::settle();
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
};

QTEST_GUILESS_MAIN(tst_mqtt_server_acl)
#include "tst_mqtt_server_acl.moc"
