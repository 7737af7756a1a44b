#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include "endpoint/mqtt_endpoint_t.h"
#include "fakes/scripted_endpoint_t.h"
#include "kit/real_broker_t.h"

using comunication::mqtt_endpoint_t;
using comunication::protoserver_t;
using comunication::utility::qos_t;
using comunication::utility::subscribe_t;

namespace {
const QString topic = QStringLiteral("local/api/v1/alice/status/elements/objects_list/e-1");
const QString fence = QStringLiteral("local/api/v1/zoe/status/fence");
}  // namespace

/// What drivers may expect of any endpoint: the fake one of the tests and the real one alike.
class tst_protoserver_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();
    void nothing_is_emitted_before_it_is_enabled();
    void retained_status_comes_at_every_subscription();
    void last_retained_value_counts();
    void deleted_status_does_not_come();
    void deletion_without_retain_deletes_nothing();
    void status_without_retain_is_not_kept();
    void retained_messages_of_other_topics_do_not_come();
    void nothing_is_emitted_after_it_is_disabled();
    void eventPublish_publishes_the_object();

 private:
    void publish(const QString& _topic, int _value, bool _retain = true) {
        endpoint->publish(_topic, QJsonObject{{"n", _value}}, qos_t::exactly_once, _retain, false);
    }
    /// Subscribes behind a last retained message, until that one has come.
    bool subscribe();
    QList<QVariantList> of_topic() const;

    std::unique_ptr<kit::real_broker_t> broker;
    std::unique_ptr<protoserver_t> endpoint;
    std::unique_ptr<QSignalSpy> messages;
};

void tst_protoserver_t::initTestCase_data() {
    QTest::addColumn<bool>("real");
    QTest::newRow("fake") << false;
    QTest::newRow("real") << true;
}

void tst_protoserver_t::init() {
    QFETCH_GLOBAL(bool, real);
    if (real) {
        broker = std::make_unique<kit::real_broker_t>();
        QCOMPARE(broker->start(), QString());
        auto made = std::make_unique<mqtt_endpoint_t>(broker->endpoint_settings());
        QSignalSpy connected(made.get(), &mqtt_endpoint_t::connected);
        made->start();
        QVERIFY(connected.wait());
        endpoint = std::move(made);
    } else {
        endpoint = std::make_unique<fakes::scripted_endpoint_t>();
    }
    messages = std::make_unique<QSignalSpy>(endpoint.get(), &protoserver_t::api_message);
}

void tst_protoserver_t::cleanup() {
    messages.reset();
    endpoint.reset();
    broker.reset();
}

bool tst_protoserver_t::subscribe() {
    messages->clear();
    publish(fence, 0);
    endpoint->subscription_status_api(subscribe_t::subscribe);
    return QTest::qWaitFor([this]() {
        return std::any_of(messages->cbegin(), messages->cend(),
                           [](const QVariantList& m) { return m[4].toString() == fence; });
    });
}

QList<QVariantList> tst_protoserver_t::of_topic() const {
    QList<QVariantList> found;
    std::copy_if(messages->cbegin(), messages->cend(), std::back_inserter(found),
                 [](const QVariantList& m) { return m[4].toString() == topic; });
    return found;
}

void tst_protoserver_t::nothing_is_emitted_before_it_is_enabled() {
    publish(topic, 1);
    publish(fence, 0);
    endpoint->subscription_status_api(subscribe_t::subscribe);
    QVERIFY(!messages->wait(200));
}

void tst_protoserver_t::retained_status_comes_at_every_subscription() {
    endpoint->set_enable_api_message(true);
    publish(topic, 1);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(subscribe());
        QCOMPARE(of_topic(), QList<QVariantList>{QVariantList({"v1", "alice", "", "status", topic,
                                                               QJsonObject{{"n", 1}}, true})});
    }
}

void tst_protoserver_t::last_retained_value_counts() {
    endpoint->set_enable_api_message(true);
    publish(topic, 1);
    publish(topic, 2);
    QVERIFY(subscribe());
    QCOMPARE(of_topic().size(), 1);
    QCOMPARE(of_topic()[0][5].toJsonObject(), (QJsonObject{{"n", 2}}));
}

void tst_protoserver_t::deleted_status_does_not_come() {
    endpoint->set_enable_api_message(true);
    publish(topic, 1);
    endpoint->publish_delete(topic, qos_t::exactly_once, true);
    QVERIFY(subscribe());
    QCOMPARE(of_topic().size(), 0);
}

void tst_protoserver_t::deletion_without_retain_deletes_nothing() {
    endpoint->set_enable_api_message(true);
    publish(topic, 1);
    endpoint->publish_delete(topic, qos_t::exactly_once, false);
    QVERIFY(subscribe());
    QCOMPARE(of_topic().size(), 1);
}

void tst_protoserver_t::status_without_retain_is_not_kept() {
    endpoint->set_enable_api_message(true);
    publish(topic, 1, false);
    QVERIFY(subscribe());
    QCOMPARE(of_topic().size(), 0);
}

void tst_protoserver_t::retained_messages_of_other_topics_do_not_come() {
    endpoint->set_enable_api_message(true);
    publish("local/api/v1/alice/phone/status/x", 1);
    publish("local/other", 1);
    QVERIFY(subscribe());
    QCOMPARE(messages->size(), 1);
}

void tst_protoserver_t::nothing_is_emitted_after_it_is_disabled() {
    endpoint->set_enable_api_message(true);
    publish(topic, 1);
    QVERIFY(subscribe());
    messages->clear();
    endpoint->set_enable_api_message(false);
    endpoint->subscription_status_api(subscribe_t::subscribe);
    QVERIFY(!messages->wait(200));
}

void tst_protoserver_t::eventPublish_publishes_the_object() {
    endpoint->set_enable_api_message(true);
    endpoint->eventPublish(topic, {{"n", 7}}, qos_t::exactly_once, true, false);
    QVERIFY(subscribe());
    QCOMPARE(of_topic().size(), 1);
    QCOMPARE(of_topic()[0][5].toJsonObject(), (QJsonObject{{"n", 7}}));
}

QTEST_GUILESS_MAIN(tst_protoserver_t)
#include "tst_protoserver_t.moc"
