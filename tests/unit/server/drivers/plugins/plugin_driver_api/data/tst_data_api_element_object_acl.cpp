#include <QTest>
#include <limits>
#include <memory>

#include "fakes/memory_database_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_element_object_t;
using hash_t = QHash<QString, QString>;
using bits_t = QHash<QString, quint64>;

/// Who may do what with an element, and what is said about it.
class tst_data_api_element_object_acl : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_element_object_t> element;
    std::unique_ptr<kit::event_recorder_t> events;

    void load(const QString& _id = "e") {
        element = std::make_unique<data_api_element_object_t>(database->get(), _id, nullptr);
        events = std::make_unique<kit::event_recorder_t>(element.get());
    }
    void load_with_alice(int _bits) {
        database->add_user("u-alice", "alice");
        database->grant("u-alice", "e", _bits);
        load();
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_element("e", "Lamp", 1, {});
    }
    void cleanup() {
        events.reset();
        element.reset();
    }

    void the_words_are_fixed() {
        QCOMPARE(data_api_element_object_t::readwrite, "readwrite");
        QCOMPARE(data_api_element_object_t::read, "read");
        QCOMPARE(data_api_element_object_t::write, "write");
        QCOMPARE(data_api_element_object_t::deny, "deny");
    }

    void bits_become_a_word_and_two_verdicts_data() {
        QTest::addColumn<int>("bits");
        QTest::addColumn<quint64>("stored");
        QTest::addColumn<bool>("permission");
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("read_bit");  // both verdicts follow it
        QTest::newRow("none") << 0 << quint64(0) << false << "deny" << false;
        QTest::newRow("read") << 1 << quint64(1) << true << "readwrite" << true;
        QTest::newRow("write") << 2 << quint64(2) << true << "readwrite" << false;
        QTest::newRow("read and write") << 3 << quint64(3) << true << "readwrite" << true;
        QTest::newRow("another bit only") << 4 << quint64(4) << true << "deny" << false;
        QTest::newRow("another bit too") << 6 << quint64(6) << true << "readwrite" << false;
        QTest::newRow("negative") << -1 << quint64(0) << false << "deny" << false;
        const int least = std::numeric_limits<int>::min();
        QTest::newRow("most negative") << least << quint64(0) << false << "deny" << false;
        const int most = std::numeric_limits<int>::max();
        QTest::newRow("all") << most << quint64(most) << true << "readwrite" << true;
    }
    void bits_become_a_word_and_two_verdicts() {
        QFETCH(const int, bits);
        QFETCH(const quint64, stored);
        QFETCH(const QString, word);
        QFETCH(const bool, read_bit);
        load_with_alice(bits);
        QCOMPARE(element->getPermissions(), (bits_t{{"alice", stored}}));
        QTEST(element->getPermission(), "permission");
        QCOMPARE(element->getACL(), (hash_t{{"alice", word}}));
        int code = 0;
        QCOMPARE(element->autorized_read("alice", code), read_bit);
        QCOMPARE(code, read_bit ? 202 : 401);
        code = 0;
        QCOMPARE(element->autorized_write("alice", code), read_bit);
        QCOMPARE(code, read_bit ? 202 : 401);
    }

    void a_mask_is_tested_in_the_low_32_bits_signed_data() {
        QTest::addColumn<int>("bits");
        QTest::addColumn<unsigned int>("mask");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("same bit") << 1 << 1U << true;
        QTest::newRow("another bit") << 1 << 2U << false;
        QTest::newRow("either bit") << 2 << 3U << true;
        QTest::newRow("no mask") << 3 << 0U << false;
        QTest::newRow("all") << 3 << 0xFFFFFFFFU << true;
        QTest::newRow("bit 30") << 0x40000000 << 0x40000000U << true;
        QTest::newRow("top bit asked") << 0x7FFFFFFF << 0x80000000U << false;
    }
    void a_mask_is_tested_in_the_low_32_bits_signed() {
        QFETCH(const int, bits);
        QFETCH(const unsigned int, mask);
        load_with_alice(bits);
        QTEST(element->check_authorization("alice", mask), "allowed");
    }

    void an_unknown_user_is_unauthorized() {
        load_with_alice(3);
        int code = 0;
        QVERIFY(!element->check_authorization("bob", 3));
        QVERIFY(!element->check_authorization("Alice", 3));
        QVERIFY(!element->autorized_read("bob", code));
        QCOMPARE(code, 401);
        QVERIFY(!element->autorized_write("", code));
        QCOMPARE(code, 401);
        QCOMPARE(element->getPermissions().size(), 1);
    }

    void while_initialising_denials_are_announced_and_grants_not() {
        load();
        database->add_user("u-alice", "alice");
        database->add_user("u-bob", "bob");
        database->grant("u-alice", "e", 3);
        element->init();
        QCOMPARE(events->take(), (QStringList{"remove bob e", "value e [] {}"}));
        QCOMPARE(element->getACL(), (hash_t{{"alice", "readwrite"}, {"bob", "deny"}}));
        element->init();
        QCOMPARE(events->take(), QStringList("value e [] {}"));
    }

    void a_load_is_announced_before_the_initialisation_ends() {
        load();
        bool silent = false;
        connect(element.get(), &data_api_element_object_t::value_change, this,
                [&] { silent = !element->send_signals_acl("alice", "read"); });
        element->init();
        QVERIFY(silent);
        QVERIFY(element->send_signals_acl("alice", "read"));
    }

    void afterwards_each_change_of_a_word_is_announced_once() {
        load();
        database->add_user("u-alice", "alice");
        database->add_user("u-bob", "bob");
        database->grant("u-alice", "e", 1);
        element->populatePermission();
        QCOMPARE(events->take(), (QStringList{"add alice e readwrite", "remove bob e"}));
        element->populatePermission();
        element->update_permission();
        QCOMPARE(events->take(), QStringList());
    }

    void a_grant_is_kept_as_first_seen_until_the_element_is_read_again() {
        load_with_alice(3);
        database->grant("u-alice", "e", 0);
        element->populatePermission();
        QCOMPARE(events->take(), QStringList());
        QVERIFY(element->check_authorization("alice", 1));
        QCOMPARE(element->getACL().value("alice"), "readwrite");
        // The flag follows the fresh result all the same.
        QVERIFY(!element->getPermission());

        element->init();
        QCOMPARE(events->take(), (QStringList{"remove alice e", "value e [] {}"}));
        QVERIFY(!element->check_authorization("alice", 1));
        QCOMPARE(element->getACL().value("alice"), "deny");
    }

    void a_grant_given_later_is_silent_when_read_again() {
        load_with_alice(0);
        database->grant("u-alice", "e", 2);
        element->init();
        QCOMPARE(events->take(), QStringList("value e [] {}"));
        QCOMPARE(element->getACL().value("alice"), "readwrite");
        QVERIFY(element->getPermission());
    }

    void reset_forgets_the_bits_and_keeps_the_words() {
        load_with_alice(3);
        element->reset();
        QVERIFY(element->getPermissions().isEmpty());
        QCOMPARE(element->getACL(), (hash_t{{"alice", "readwrite"}}));
        QCOMPARE(events->take(), QStringList());
        element->populatePermission();
        QCOMPARE(events->take(), QStringList());
    }

    void a_removed_user_is_withdrawn_unless_denied_data() {
        QTest::addColumn<int>("bits");
        QTest::addColumn<QStringList>("said");
        QTest::newRow("granted") << 1 << QStringList("remove alice e");
        QTest::newRow("denied") << 0 << QStringList();
    }
    void a_removed_user_is_withdrawn_unless_denied() {
        QFETCH(const int, bits);
        load_with_alice(bits);
        database->remove_user("u-alice");
        element->populatePermission();
        QTEST(events->take(), "said");
        QVERIFY(element->getACL().isEmpty());
        QVERIFY(!element->getPermission());
        element->remove_username_acl("alice");
        QCOMPARE(events->take(), QStringList());
    }

    void two_ids_with_one_name_share_the_first_grant() {
        database->add_user("u-1", "alice");
        database->add_user("u-2", "alice");
        database->grant("u-2", "e", 3);
        load();
        QCOMPARE(element->getPermissions(), (bits_t{{"alice", 0}}));
        QCOMPARE(element->getACL(), (hash_t{{"alice", "deny"}}));
        QVERIFY(element->getPermission());
    }

    void one_users_word_is_set_by_itself() {
        load_with_alice(3);
        element->add_acl("bob");
        element->add_acl("bob");
        element->add_acl("alice");
        QCOMPARE(events->take(), QStringList("remove bob e"));
        element->remove_username_acl("bob");
        element->remove_username_acl("alice");
        QCOMPARE(events->take(), QStringList("remove alice e"));
        element->add_acl("alice");
        QCOMPARE(events->take(), QStringList("add alice e readwrite"));
        QCOMPARE(element->getACL(), (hash_t{{"alice", "readwrite"}}));
    }

    void a_word_is_worth_a_signal_when_new_or_different() {
        load_with_alice(3);
        QVERIFY(!element->send_signals_acl("alice", "readwrite"));
        QVERIFY(element->send_signals_acl("alice", "read"));
        QVERIFY(element->send_signals_acl("bob", "deny"));
        // An element that the database lacks stays in its initialisation.
        load("unknown");
        QVERIFY(!element->send_signals_acl("bob", "read"));
    }

    void a_word_is_stored_before_it_is_announced() {
        load();
        QStringList stored;
        const auto note = [&](const QString& _user) {
            stored.append(_user + ' ' + element->getACL().value(_user, "none"));
        };
        connect(element.get(), &data_api_element_object_t::add_acl_element, this, note);
        connect(element.get(), &data_api_element_object_t::remove_acl_element, this, note);
        database->add_user("u-alice", "alice");
        database->add_user("u-bob", "bob");
        database->grant("u-alice", "e", 1);
        element->populatePermission();
        database->remove_user("u-alice");
        element->populatePermission();
        QCOMPARE(stored, (QStringList{"alice readwrite", "bob deny", "alice none"}));
    }

    void new_words_are_announced_before_withdrawals() {
        load_with_alice(3);
        database->remove_user("u-alice");
        database->add_user("u-bob", "bob");
        database->grant("u-bob", "e", 1);
        element->populatePermission();
        QCOMPARE(events->take(), (QStringList{"add bob e readwrite", "remove alice e"}));
    }

    void remove_acl_takes_the_elements_id_out_of_the_words_data() {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("said");
        QTest::newRow("usual id") << "e-lamp"
                                  << "readwrite" << false;
        QTest::newRow("id inside the word") << "read"
                                            << "write" << true;
        QTest::newRow("every occurrence") << "e"
                                          << "radwrit" << true;
        QTest::newRow("case-sensitive") << "READ"
                                        << "readwrite" << false;
    }
    void remove_acl_takes_the_elements_id_out_of_the_words() {
        QFETCH(const QString, id);
        QFETCH(const bool, said);
        database->add_element(id, "Lamp", 1, {});
        database->add_user("u-alice", "alice");
        database->grant("u-alice", id, 1);
        load(id);
        element->remove_acl();
        QTEST(element->getACL().value("alice"), "word");
        QCOMPARE(events->take(), said ? QStringList("remove alice " + id) : QStringList());
    }

    void a_deleted_database_has_no_users() {
        load_with_alice(3);
        database.reset();
        element->update_permission();
        QCOMPARE(events->take(), QStringList("remove alice e"));
        QVERIFY(element->getACL().isEmpty());
        QVERIFY(!element->getPermission());
        QVERIFY(element->check_authorization("alice", 3));
        element->init();
        QVERIFY(!element->check_authorization("alice", 3));
        element->remove_acl();
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_acl)
#include "tst_data_api_element_object_acl.moc"
