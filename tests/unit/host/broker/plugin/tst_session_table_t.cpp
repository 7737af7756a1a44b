#include "broker/plugin/session_table_t.h"

#include <QTest>
#include <memory>
#include <set>

using namespace broker::plugin;
using namespace std::chrono_literals;

namespace {

using ids_t = std::vector<std::string>;

/// Objects of the broker.
const char objects[2'000] = {};
client_key_t object(int _number) {
    return objects + _number;
}

session_t made(int _object, const std::string& _id, const std::string& _user) {
    session_t session;
    session.client = object(_object);
    session.id = _id;
    session.user = _user;
    session.life = 1;
    return session;
}

}  // namespace

class tst_session_table_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();

    void found_by_object_and_identifier();
    void one_that_left_without_a_session_is_forgotten();
    void one_that_the_broker_keeps_waits();
    void taken_over_identifier_belongs_to_the_new_one();
    void object_used_again_means_that_the_former_one_has_gone();
    void old_connection_that_ends_late_does_not_take_the_new_one_with_it();
    void doomed_user_loses_waiting_sessions_now_and_connected_ones_later();
    void doomed_session_that_the_broker_does_not_keep_needs_no_deletion();
    void dismissed_until_the_host_has_taken_it_over();
    void dismissed_while_connected();
    void idle_ones_are_dismissed();
    void oldest_of_a_user_goes_when_there_are_too_many();
    void ghosts_make_room_first();
    void oldest_of_all_goes_when_there_are_too_many();
    void one_that_comes_back_waits_no_more();
    void nothing_stays_behind();

 private:
    void leave(int _object, bool _kept = true);
    void settle();
    ids_t dismissed() const;

    std::unique_ptr<session_table_t> table;
    std::set<std::string> kept;
    session_table_t::time_t now{0};
};

void tst_session_table_t::init() {
    table = std::make_unique<session_table_t>(session_table_t::limits_t{100s, 3, 5});
    kept.clear();
    now = 1'000s;
}

void tst_session_table_t::leave(int _object, bool _kept) {
    session_t* const session = table->find(object(_object));
    if (_kept) {
        kept.insert(session->id);
    } else {
        kept.erase(session->id);
    }
    table->leave(session);
    settle();
}

void tst_session_table_t::settle() {
    table->settle(now, [this](const std::string& _id) { return kept.count(_id) != 0; });
}

ids_t tst_session_table_t::dismissed() const {
    ids_t ids;
    for (const session_t* const session : table->dismissed(0, 1'000)) {
        ids.push_back(session->id);
    }
    return ids;
}

void tst_session_table_t::found_by_object_and_identifier() {
    QVERIFY(table->find(object(1)) == nullptr && table->owner("phone") == nullptr);
    table->enter(made(1, "phone", "alice"));
    QCOMPARE(table->find(object(1))->user, std::string("alice"));
    QVERIFY(table->owner("phone") == table->find(object(1)));
    QVERIFY(table->find(object(2)) == nullptr && table->owner("phon") == nullptr);
}

void tst_session_table_t::one_that_left_without_a_session_is_forgotten() {
    table->enter(made(1, "phone", "alice"));
    QVERIFY(table->leave(table->find(object(1))));
    // Its last will is judged now.
    QVERIFY(table->find(object(1)) != nullptr);
    settle();
    QVERIFY(table->find(object(1)) == nullptr && table->owner("phone") == nullptr);
    QCOMPARE(table->size(), 0u);
}

void tst_session_table_t::one_that_the_broker_keeps_waits() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    QVERIFY(table->owner("phone")->state == session_t::state_t::offline);
    QVERIFY(dismissed().empty());
    // The broker tells of an end a second time when such a session is taken over.
    QVERIFY(!table->leave(table->find(object(1))));
}

void tst_session_table_t::taken_over_identifier_belongs_to_the_new_one() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    table->enter(made(2, "phone", "bob"));
    QCOMPARE(table->owner("phone")->user, std::string("bob"));
    settle();
    QVERIFY(table->find(object(1)) == nullptr);
    QCOMPARE(table->size(), 1u);
}

void tst_session_table_t::object_used_again_means_that_the_former_one_has_gone() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    table->enter(made(1, "tablet", "bob"));
    QVERIFY(table->owner("phone") == nullptr);
    QCOMPARE(table->find(object(1))->user, std::string("bob"));
    table->doom("alice");
    settle();
    QVERIFY(dismissed().empty());
    QCOMPARE(table->size(), 1u);
}

void tst_session_table_t::old_connection_that_ends_late_does_not_take_the_new_one_with_it() {
    table->enter(made(1, "phone", "alice"));
    table->enter(made(2, "phone", "alice"));
    settle();
    QVERIFY(table->find(object(1)) != nullptr);  // by WebSockets the old one ends later
    QVERIFY(table->leave(table->find(object(1))));
    settle();
    QVERIFY(table->find(object(1)) == nullptr);
    QVERIFY(table->owner("phone") == table->find(object(2)));
    QVERIFY(table->owner("phone")->state == session_t::state_t::online);
}

void tst_session_table_t::doomed_user_loses_waiting_sessions_now_and_connected_ones_later() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    table->enter(made(2, "tablet", "alice"));
    table->enter(made(3, "other", "bob"));
    leave(3);
    table->doom("alice");
    table->doom("nobody");
    QCOMPARE(dismissed(), ids_t{"phone"});
    leave(2);
    QCOMPARE(dismissed(), (ids_t{"phone", "tablet"}));
    // Another time it is all the same.
    table->doom("alice");
    QCOMPARE(table->dismissed_count(), 2u);
}

void tst_session_table_t::doomed_session_that_the_broker_does_not_keep_needs_no_deletion() {
    table->enter(made(1, "phone", "alice"));
    table->doom("alice");
    leave(1, false);
    QVERIFY(dismissed().empty());
    QCOMPARE(table->size(), 0u);
}

void tst_session_table_t::dismissed_until_the_host_has_taken_it_over() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    table->doom("alice");
    table->enter(made(2, "phone", "@host"));
    QVERIFY(dismissed().empty());
    leave(2, false);
    QCOMPARE(table->size(), 0u);
}

void tst_session_table_t::dismissed_while_connected() {
    table->enter(made(1, "phone", "alice"));
    table->dismiss(table->owner("phone"));
    table->dismiss(table->owner("phone"));
    QCOMPARE(dismissed(), ids_t{"phone"});
    leave(1);
    QCOMPARE(dismissed(), ids_t{"phone"});
    table->enter(made(2, "phone", "@host"));
    QVERIFY(dismissed().empty());
    table->enter(made(3, "tablet", "alice"));
    table->dismiss(table->owner("tablet"));
    leave(3, false);
    QVERIFY(dismissed().empty());
}

void tst_session_table_t::idle_ones_are_dismissed() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    now += 50s;
    table->enter(made(2, "tablet", "alice"));
    leave(2);
    now += 50s - 1ms;
    settle();
    QVERIFY(dismissed().empty());
    now += 1ms;
    settle();
    QCOMPARE(dismissed(), ids_t{"phone"});
}

void tst_session_table_t::oldest_of_a_user_goes_when_there_are_too_many() {
    for (int i = 0; i < 4; ++i) {
        table->enter(made(i, "a" + std::to_string(i), "alice"));
        leave(i);
    }
    QCOMPARE(dismissed(), ids_t{"a0"});
}

void tst_session_table_t::ghosts_make_room_first() {
    for (int i = 0; i < 3; ++i) {
        table->enter(made(i, "a" + std::to_string(i), "alice"));
        leave(i);
    }
    kept.erase("a0");  // it has ended by itself
    table->enter(made(3, "a3", "alice"));
    leave(3);
    QVERIFY(dismissed().empty());
    QVERIFY(table->owner("a0") == nullptr && table->owner("a1") != nullptr);
}

void tst_session_table_t::oldest_of_all_goes_when_there_are_too_many() {
    for (int i = 0; i < 6; ++i) {
        table->enter(made(i, "c" + std::to_string(i), "u" + std::to_string(i)));
        leave(i);
    }
    QCOMPARE(dismissed(), ids_t{"c0"});
}

void tst_session_table_t::one_that_comes_back_waits_no_more() {
    table->enter(made(1, "phone", "alice"));
    leave(1);
    table->enter(made(2, "phone", "alice"));
    now += 1'000s;
    settle();
    QVERIFY(dismissed().empty());
    table->doom("alice");
    QVERIFY(dismissed().empty());
}

void tst_session_table_t::nothing_stays_behind() {
    for (int i = 0; i < 1'000; ++i) {
        const int user = i % 7;
        table->enter(made(i % 50, "c" + std::to_string(i % 90), "u" + std::to_string(user)));
        if (i % 3 != 0) {
            leave(i % 50, i % 5 != 0);
        }
        if (i % 11 == 0) {
            table->doom("u" + std::to_string(user));
        }
        now += 1s;
    }
    for (int i = 0; i < 50; ++i) {
        if (table->find(object(i)) != nullptr) {
            leave(i, false);
        }
    }
    for (const session_t* const session : table->dismissed(0, 1'000)) {
        table->enter(made(1'000, session->id, "@host"));
        leave(1'000, false);
    }
    kept.clear();
    now += 200s;
    settle();
    QCOMPARE(table->size(), table->dismissed_count());
}

QTEST_GUILESS_MAIN(tst_session_table_t)
#include "tst_session_table_t.moc"
