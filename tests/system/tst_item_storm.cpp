#include <QtTest>
#include <array>
#include <ctime>

#include "kit/lamps_home.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"
#include "system/support/database_shell_t.h"

using namespace kit;
using namespace support;

namespace {

constexpr int element_count = 3000;
constexpr int user_count = 3;
constexpr int changes = 400;
constexpr int single_changes = 10;

double processor_s(qint64 _process) {
    clockid_t clock = 0;
    timespec time{};
    const bool known =
        ::clock_getcpuclockid(pid_t(_process), &clock) == 0 && ::clock_gettime(clock, &time) == 0;
    return known ? double(time.tv_sec) + double(time.tv_nsec) / 1e9 : 0;
}

}  // namespace

/// More items change than drivers could be told of one by one: every element hears of each.
class tst_item_storm : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void a_storm_costs_less_than_its_changes_and_the_last_values_are_pushed();
    void a_change_after_it_is_pushed_alone();

 private:
    bool change(const database_shell_t& _shell, int _item, int _value) {
        return _shell.run(QStringLiteral("UPDATE items SET value = '%1' WHERE id = 'i-%2'")
                              .arg(_value)
                              .arg(_item));
    }
    /// Whether every user's last state of this element has the value.
    bool has_last(int _element, int _value) {
        bool has = true;
        for (int user = 0; user < user_count; ++user) {
            const auto messages = clients[user].messages();
            for (; looked_at[user] < messages.size(); ++looked_at[user]) {
                const mqtt_client_t::message_t& each = messages.at(looked_at[user]);
                last[user].insert(each.topic, value_in(each.json(), "execute"));
            }
            has = has && last[user].value(state_topic(names[user], lamp_id(_element))) ==
                             QString::number(_value);
        }
        return has;
    }

    host_process_t host;
    const QStringList names = numbered_users(user_count);
    std::array<mqtt_client_t, user_count> clients;
    std::array<qsizetype, user_count> looked_at{};
    std::array<QHash<QString, QString>, user_count> last;  ///< value by topic
};

void tst_item_storm::initTestCase() {
    QVERIFY2(host.import(lamps_home(element_count, element_count, names)),
             qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    for (int user = 0; user < user_count; ++user) {
        QVERIFY(join(clients[user], host, names[user]));
    }
    QTRY_VERIFY_WITH_TIMEOUT(has_last(element_count - 1, 0), 30'000);
}

void tst_item_storm::a_storm_costs_less_than_its_changes_and_the_last_values_are_pushed() {
    const database_shell_t shell(host.data() + "/installation.db");
    const double begin = processor_s(host.pid());
    for (int value = 1; value <= single_changes; ++value) {
        QVERIFY(change(shell, 0, value));
        QVERIFY(wait_until([&]() { return has_last(0, value); }, 10'000));
    }
    const double each = (processor_s(host.pid()) - begin) / single_changes;

    const double before = processor_s(host.pid());
    for (int value = 1; value <= changes; ++value) {
        QVERIFY(change(shell, value, value));
    }
    for (int value = 1; value <= changes; ++value) {
        QVERIFY2(wait_until([&]() { return has_last(value, value); }, 30'000),
                 qPrintable(lamp_id(value)));
    }
    const double storm = processor_s(host.pid()) - before;
    qInfo("a change %.1f ms, %d at once %.0f ms of processor time", each * 1e3, changes,
          storm * 1e3);
    QVERIFY(storm < each * changes / 2);
}

void tst_item_storm::a_change_after_it_is_pushed_alone() {
    const database_shell_t shell(host.data() + "/installation.db");
    QVERIFY(change(shell, 7, 5000));
    QVERIFY(wait_until([&]() { return has_last(7, 5000); }, 10'000));
}

QTEST_GUILESS_MAIN(tst_item_storm)
#include "tst_item_storm.moc"
