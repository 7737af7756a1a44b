#include <QtTest>

#include "system/support/api_user.h"
#include "system/support/loaded_home.h"
#include "system/support/troubles.h"
#include "system/support/victim_t.h"

using namespace support;

/// Whatever one user sends, the others are answered, nobody waits for long, and no memory is lost
/// to it. The limits are wide, the machine may be busy; tst_floods has the figures.
class tst_one_user_floods : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void others_are_answered_and_memory_stays_data();
    void others_are_answered_and_memory_stays();
    void a_refused_request_is_told_why_data();
    void a_refused_request_is_told_why();

 private:
    host_process_t host;
};

void tst_one_user_floods::initTestCase() {
    QVERIFY2(host.import(loaded_home(200, 12)), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_one_user_floods::others_are_answered_and_memory_stays_data() {
    QTest::addColumn<int>("index");
    const auto floods = floods_of_a_user();
    for (std::size_t i = 0; i < floods.size(); ++i) {
        QTest::newRow(floods[i].name) << int(i);
    }
}

void tst_one_user_floods::others_are_answered_and_memory_stays() {
    QFETCH(int, index);
    victim_t victim(&host, "user1");
    QVERIFY(victim.sign_in());
    const waits_t quiet = victim.ask(20);
    // Each time another one: who was sent away stays out for some seconds.
    const auto flood =
        floods_of_a_user("user" + QByteArray::number(index + 2))[std::size_t(index)].begin(host);
    QVERIFY(flood);
    const waits_t waits = victim.ask(20);
    qInfo("median %.1f ms, longest %.1f ms, server %d MiB, broker %d MiB", waits.median,
          waits.longest, waits.server, waits.broker);
    QCOMPARE(waits.unanswered, 0);
    QVERIFY(waits.longest < std::max(2'000.0, 10 * quiet.longest));
#if !defined(__SANITIZE_ADDRESS__)
    QVERIFY(waits.server + waits.broker < 300);
#endif
}

void tst_one_user_floods::a_refused_request_is_told_why_data() {
    QTest::addColumn<QJsonObject>("payload");
    QTest::addColumn<QJsonObject>("answer");
    const QJsonObject too_large{{"error", 413}, {"message", "Too large request"}};
    QJsonArray types;
    for (int index = 0; index < 1'001; ++index) {
        types.append(1);
    }
    QTest::newRow("long filter") << QJsonObject{{"filters", QJsonObject{{"types", types}}}}
                                 << too_large;
    QTest::newRow("long value") << QJsonObject{{"data", QString(1'025, '9')}} << too_large;
    QTest::newRow("large request") << QJsonObject{{"a", QString(1'100'000, '9')}} << too_large;
}

void tst_one_user_floods::a_refused_request_is_told_why() {
    QFETCH(QJsonObject, payload);
    QFETCH(QJsonObject, answer);
    kit::mqtt_client_t client;
    QVERIFY(join(client, host, "user1"));
    QJsonObject told = client.request(request_topic("user1", "get"), payload);
    QVERIFY(told.contains("uuid"));
    told.remove("uuid");
    QCOMPARE(told, answer);
}

QTEST_GUILESS_MAIN(tst_one_user_floods)
#include "tst_one_user_floods.moc"
