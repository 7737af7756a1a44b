// mqtt_server_api_v1_t: whom it publishes to and whom an ACL pass is about.
#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/support/choosy_users.h"

using interfaces::mqtt_server_api_v1_t;

namespace {

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

QString topic(const char* _user) {
    return latin("local/api/v1/%1/status/elements/objects_list").arg(latin(_user));
}

}  // namespace

/// The small home with two users more: one may not sign in, one uses another version.
class tst_mqtt_server_api_v1_users : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        furnish(false);
        for (const char* id : {"barred-dora", "v2-carl"}) {
            home->add_user(latin(id), latin(id).section(QLatin1Char('-'), 1));
            home->grant(latin(id), latin("e-lamp"), 3);
        }
        elements->setEnabled(true);
        handler = std::make_unique<mqtt_server_api_v1_t>(elements.get(), nullptr);
        kit::take_user_questions();
    }
    void cleanup() {
        handler.reset();
        clear();
    }

    void packets_go_to_version_1_users_who_may_sign_in_data() {
        QTest::addColumn<int>("update");
        QTest::newRow("one element") << 0;
        QTest::newRow("its changes") << 1;
        QTest::newRow("the list") << 2;
    }
    void packets_go_to_version_1_users_who_may_sign_in() {
        QFETCH(int, update);
        const QString lamp = latin("e-lamp");
        QStringList topics =
            (update == 0 ? handler->packet_update(lamp)
                         : (update == 1 ? handler->packet_update(lamp, QStringList{})
                                        : handler->packet_update(QStringList{lamp})))
                .keys();
        topics.sort();
        const QString level = update == 2 ? QString() : latin("/e-lamp");
        QCOMPARE(topics, (QStringList{topic("alice") + level, topic("bob") + level}));
        QCOMPARE(kit::take_user_questions(), QStringList{latin("names v1 1")});
    }

    void one_users_packet_is_for_version_1_users_who_may_sign_in_data() {
        QTest::addColumn<int>("packets");
        QTest::newRow("alice") << 1;
        QTest::newRow("carl") << 0;
        QTest::newRow("dora") << 0;
    }
    void one_users_packet_is_for_version_1_users_who_may_sign_in() {
        QFETCH(int, packets);
        const QString user = latin(QTest::currentDataTag());
        QCOMPARE(handler->packet_update(user, latin("e-lamp")).size(), packets);
        QCOMPARE(kit::take_user_questions(), QStringList{latin("names v1 1")});
    }

    void an_acl_pass_is_about_version_1_users_who_may_sign_in() {
        handler->populate_acl(elements->get_data_api_elements_acl());
        QCOMPARE(kit::take_user_questions(), QStringList{latin("names v1 1")});
    }

 private:
    std::unique_ptr<mqtt_server_api_v1_t> handler;
};

QTEST_GUILESS_MAIN(tst_mqtt_server_api_v1_users)
#include "tst_mqtt_server_api_v1_users.moc"
