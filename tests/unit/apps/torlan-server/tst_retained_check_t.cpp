#include "retained_check_t.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

#include "comunication/api_topics.h"
#include "endpoint/endpoint_connection.h"
#include "fakes/memory_database_t.h"
#include "kit/furnish.h"
#include "kit/real_broker_t.h"

using torlan::retained_check_t;

/// On a real broker.
class tst_retained_check_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() {
        QCOMPARE(broker.start(), QString());
        QCOMPARE(broker.let_host_in(&host), 0);
        const QString fence = broker.settings.connection_topic;
        QCOMPARE(host.publish(fence, "{}", true), 0);
    }
    void init() {
        memory = std::make_unique<fakes::memory_database_t>();
        kit::furnish(*memory);
        for (const QString& user : QStringList{"alice", "bob"}) {
            for (const QString& element : QStringList{"e-lamp", "e-night", "e-therm"}) {
                const bool reads = user == "alice" || element == "e-lamp";
                QCOMPARE(retain(user, element, reads ? "{}" : ""), 0);
            }
        }
    }

    void broker_that_holds_what_it_should_is_well() {
        const QJsonObject answer = checked();
        QCOMPARE(answer["expected"].toInt(), 4);
        QCOMPARE(answer["missing"].toInt(), 0);
        QCOMPARE(answer["surplus"].toInt(), 0);
        QCOMPARE(answer["users"].toInt(), 2);
        QCOMPARE(answer["users_seen"].toInt(), 2);
    }

    void what_is_missing_is_named() {
        QCOMPARE(retain("alice", "e-night", {}), 0);
        const QJsonObject answer = checked();
        QCOMPARE(answer["missing"].toInt(), 1);
        QCOMPARE(answer["surplus"].toInt(), 0);
        QCOMPARE(answer["topics"].toArray(), QJsonArray{topic("alice", "e-night")});
    }

    void what_nobody_may_read_is_named() {
        QCOMPARE(retain("bob", "e-night", "{}"), 0);
        QCOMPARE(retain("bob", "e-nowhere", "{}"), 0);
        const QJsonObject answer = checked();
        QCOMPARE(answer["missing"].toInt(), 0);
        QCOMPARE(answer["surplus"].toInt(), 2);
        QCOMPARE(retain("bob", "e-nowhere", {}), 0);
    }

    void withdrawn_right_is_seen() {
        memory->grant("u-bob", "e-lamp", 0);
        QCOMPARE(checked()["surplus"].toInt(), 1);
    }

    void broker_that_does_not_let_it_in_is_an_error() {
        auto connection = comunication::connection_of(broker.endpoint_settings());
        connection.password = "wrong";
        retained_check_t check(memory->get(), connection, broker.settings.connection_topic);
        QSignalSpy finished(&check, &retained_check_t::finished);
        check.start();
        QVERIFY(finished.wait());
        QVERIFY(
            finished[0][0].toJsonObject()["error"].toString().startsWith("The broker could not"));
    }

 private:
    static QString topic(const QString& _user, const QString& _element) {
        return comunication::api_topics::element_state(comunication::api_topics::version_1, _user,
                                                       _element);
    }
    int retain(const QString& _user, const QString& _element, const QByteArray& _payload) {
        return host.publish(topic(_user, _element), _payload, true);
    }
    QJsonObject checked() {
        retained_check_t check(memory->get(),
                               comunication::connection_of(broker.endpoint_settings()),
                               broker.settings.connection_topic);
        QSignalSpy finished(&check, &retained_check_t::finished);
        check.start();
        return finished.wait() ? finished[0][0].toJsonObject() : QJsonObject();
    }

    kit::real_broker_t broker;
    kit::mqtt_client_t host;
    std::unique_ptr<fakes::memory_database_t> memory;
};

QTEST_GUILESS_MAIN(tst_retained_check_t)
#include "tst_retained_check_t.moc"
