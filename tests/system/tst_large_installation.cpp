#include <QtTest>

#include "kit/lamps_home.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {

constexpr int element_count = 10000;
constexpr int user_count = 10;

}  // namespace

/// 10,000 elements and 10 users: it starts, stays small, and every retained packet is there.
class tst_large_installation : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void every_retained_packet_is_there();
    void a_change_is_pushed();
    void memory_stays_below_600_mib();

 private:
    host_process_t host;
};

void tst_large_installation::initTestCase() {
    QVERIFY2(host.import(lamps_home(element_count, element_count, numbered_users(user_count))),
             qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_large_installation::every_retained_packet_is_there() {
    for (int user = 0; user < user_count; ++user) {
        const QString name = QStringLiteral("user%1").arg(user);
        mqtt_client_t client;
        QVERIFY(join(client, host, name));
        QSet<QString> seen;
        int looked_at = 0;
        const QString prefix = state_topic(name, {});
        QVERIFY(wait_until(
            [&]() {
                const auto messages = client.messages();
                for (; looked_at < messages.size(); ++looked_at) {
                    if (messages.at(looked_at).topic.startsWith(prefix)) {
                        seen.insert(messages.at(looked_at).topic);
                    }
                }
                return seen.size() == element_count;
            },
            60000));
    }
}

void tst_large_installation::a_change_is_pushed() {
    mqtt_client_t client;
    QVERIFY(client.sign_in(host.port(), "user3", password_of("user3")) == 0);
    QVERIFY(client.subscribe(state_topic("user3", "e-77")));
    QVERIFY(client.wait_for(state_topic("user3", "e-77")));
    client.forget();
    QCOMPARE(host.control({"set", "i-77", "1"}), 0);
    const auto state = client.wait_for(state_topic("user3", "e-77"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "execute"), "1");
}

void tst_large_installation::memory_stays_below_600_mib() {
    const int resident = host.resident_mib();
    qInfo("resident set of the server: %d MiB", resident);
    QVERIFY(resident > 0);
#ifndef __SANITIZE_ADDRESS__
    QVERIFY(resident < 600);
#endif
}

QTEST_GUILESS_MAIN(tst_large_installation)
#include "tst_large_installation.moc"
