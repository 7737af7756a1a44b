#include "broker/plugin/account_table_t.h"

#include <QTest>
#include <algorithm>
#include <set>

#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;

namespace {

using names_t = std::vector<std::string>;

names_t sorted(names_t _names) {
    std::sort(_names.begin(), _names.end());
    return _names;
}

QByteArray user(const QByteArray& _name, const QByteArray& _password = {}, int _iterations = 10) {
    return plugin_broker_t::user(_name, _password, _iterations);
}

}  // namespace

class tst_account_table_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void knows_nobody_before_it_was_told();
    void all_replaces_everything();
    void change_leaves_the_others_alone();
    void same_hash_again_changes_nothing();
    void another_hash_is_another_life();
    void removed_and_added_in_one_message_is_another_life();
    void bad_row_removes_its_user_only();
    void forgets_the_good_password_with_the_account();
    void unknown_name_costs_what_known_ones_cost();
};

void tst_account_table_t::knows_nobody_before_it_was_told() {
    account_table_t table;
    QVERIFY(!table.is_told());
    QVERIFY(table.find("alice") == nullptr);
    QVERIFY(table.apply(message_of("all 1", {})).empty());
    QVERIFY(table.is_told());
}

void tst_account_table_t::all_replaces_everything() {
    account_table_t table;
    QCOMPARE(table.apply(message_of("all 1", {user("alice"), user("bob"), user("carol")})),
             names_t());
    QCOMPARE(sorted(table.apply(message_of("all 2", {user("bob"), user("dave")}))),
             (names_t{"alice", "carol"}));
    QCOMPARE(table.size(), 2u);
    QVERIFY(table.find("bob") != nullptr && table.find("dave") != nullptr);
}

void tst_account_table_t::change_leaves_the_others_alone() {
    account_table_t table;
    table.apply(message_of("all 1", {user("alice"), user("bob")}));
    QCOMPARE(table.apply(message_of("change 2", {user("carol"), "remove bob", "remove nobody"})),
             names_t{"bob"});
    QVERIFY(table.find("alice") != nullptr && table.find("carol") != nullptr);
    QVERIFY(table.find("bob") == nullptr);
}

void tst_account_table_t::same_hash_again_changes_nothing() {
    account_table_t table;
    table.apply(message_of("all 1", {user("alice")}));
    const auto life = table.find("alice")->life;
    QVERIFY(life != 0);
    QCOMPARE(table.apply(message_of("change 2", {user("alice")})), names_t());
    QCOMPARE(table.apply(message_of("all 3", {user("alice")})), names_t());
    QCOMPARE(table.find("alice")->life, life);
}

void tst_account_table_t::another_hash_is_another_life() {
    account_table_t table;
    table.apply(message_of("all 1", {user("alice"), user("bob")}));
    const auto life = table.find("alice")->life;
    QCOMPARE(table.apply(message_of("change 2", {user("alice", "other")})), names_t{"alice"});
    QVERIFY(table.find("alice")->life != life);
    QVERIFY(table.find("alice")->life != table.find("bob")->life);
}

void tst_account_table_t::removed_and_added_in_one_message_is_another_life() {
    account_table_t table;
    table.apply(message_of("all 1", {user("alice")}));
    const auto life = table.find("alice")->life;
    QCOMPARE(table.apply(message_of("change 2", {user("alice"), "remove alice"})),
             names_t{"alice"});
    QVERIFY(table.find("alice")->life != life);
}

void tst_account_table_t::bad_row_removes_its_user_only() {
    account_table_t table;
    table.apply(message_of("all 1", {user("alice"), user("bob")}));
    QCOMPARE(table.apply(message_of("all 2", {user("alice"), "user bob clear"})), names_t{"bob"});
    QCOMPARE(table.apply(message_of("change 3", {"user alice clear"})), names_t{"alice"});
    QCOMPARE(table.size(), 0u);
}

void tst_account_table_t::forgets_the_good_password_with_the_account() {
    account_table_t table;
    table.apply(message_of("all 1", {user("alice")}));
    table.find("alice")->good_password = digest_of(1);
    table.apply(message_of("change 2", {user("bob")}));
    QVERIFY(table.find("alice")->good_password);
    table.apply(message_of("change 3", {user("alice", "other")}));
    QVERIFY(!table.find("alice")->good_password);
}

void tst_account_table_t::unknown_name_costs_what_known_ones_cost() {
    account_table_t table;
    const auto costs = [&table]() {
        std::set<std::uint32_t> found;
        for (std::uint64_t seed = 0; seed < 100; ++seed) {
            found.insert(table.usual_iterations(seed));
        }
        return found;
    };
    using costs_t = std::set<std::uint32_t>;
    // Cheap ones belong to the host's own checks; no stranger knows such a name.
    table.apply(message_of("all 1", {user("check", {}, 1)}));
    QCOMPARE(costs(), costs_t{5'000});
    table.apply(message_of("change 2", {user("alice", {}, 100)}));
    QCOMPARE(costs(), costs_t{100});
    table.apply(message_of("change 3", {user("bob", {}, 300), user("carol", {}, 100)}));
    QCOMPARE(costs(), (costs_t{100, 300}));
    QCOMPARE(table.usual_iterations(5), table.usual_iterations(5));
    table.apply(message_of("change 4", {"remove alice", user("carol", {}, 200)}));
    QCOMPARE(costs(), (costs_t{200, 300}));
    table.apply(message_of("all 5", {}));
    QCOMPARE(costs(), costs_t{5'000});
}

QTEST_GUILESS_MAIN(tst_account_table_t)
#include "tst_account_table_t.moc"
