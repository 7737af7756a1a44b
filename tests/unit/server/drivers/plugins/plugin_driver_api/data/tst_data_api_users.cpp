#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "fakes/memory_database_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/support/choosy_users.h"

using interfaces::data_api_element_object_t;
using interfaces::data_api_elements_t;

/// Which users the data model asks the host for: those who may sign in, and of its own version.
class tst_data_api_users : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_elements_t> elements;

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_element("e", "Lamp", 1, {});
        for (const char* id : {"u-alice", "barred-bob", "v2-carl"}) {
            const QString name = QString(id).section('-', 1);
            database->add_user(id, name);
            database->grant(id, "e", 3);
        }
        elements = std::make_unique<data_api_elements_t>(database->get(), nullptr);
        kit::take_user_questions();
    }
    void cleanup() { elements.reset(); }

    void a_user_who_may_not_sign_in_has_no_grant_and_no_word() {
        const data_api_element_object_t element(database->get(), "e", nullptr);
        QStringList granted = element.getPermissions().keys();
        granted.sort();
        QCOMPARE(granted, (QStringList{"alice", "carl"}));
        QCOMPARE(kit::take_user_questions(), QStringList("ids 1"));
    }

    void loading_asks_for_the_names_of_users_who_may_sign_in() {
        elements->init();
        QCOMPARE(kit::take_user_questions(), (QStringList{"names 1", "ids 1"}));
        QVERIFY(!elements->get_data_api_elements_acl().contains("bob"));
        elements->reinit();
        QCOMPARE(kit::take_user_questions(), (QStringList{"names 1", "ids 1"}));
    }

    void changed_users_are_asked_for_once_an_element() {
        elements->init();
        kit::take_user_questions();
        database->add_user("barred-dora", "dora");
        elements->check_permission();
        QCOMPARE(kit::take_user_questions(), QStringList("ids 1"));
        QVERIFY(!elements->get_data_api_elements_acl().contains("dora"));
    }

    void questions_reach_the_host_as_they_were_asked() {
        QCOMPARE(elements->get_api_users(true), (QStringList{"u-alice", "v2-carl"}));
        QCOMPARE(elements->get_api_users(false), (QStringList{"barred-bob", "u-alice", "v2-carl"}));
        QCOMPARE(elements->get_api_usernames(true), (QStringList{"alice", "carl"}));
        QCOMPARE(elements->get_api_usernames(false), (QStringList{"bob", "alice", "carl"}));
        QCOMPARE(elements->get_api_usernames("v1", true), QStringList("alice"));
        QCOMPARE(elements->get_api_usernames("v1", false), (QStringList{"bob", "alice"}));
        QCOMPARE(elements->get_api_usernames("v2", true), QStringList("carl"));
        QCOMPARE(elements->get_api_usernames("v2", false), QStringList("carl"));
        QCOMPARE(kit::take_user_questions(),
                 (QStringList{"ids 1", "ids 0", "names 1", "names 0", "names v1 1", "names v1 0",
                              "names v2 1", "names v2 0"}));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_users)
#include "tst_data_api_users.moc"
