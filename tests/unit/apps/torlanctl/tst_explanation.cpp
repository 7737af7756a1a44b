#include "explanation.h"

#include <QTest>

using namespace torlan;

class tst_explanation : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void codes_follow_grant_and_type_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("bits");
        QTest::addColumn<int>("read");
        QTest::addColumn<int>("write");
        QTest::addColumn<bool>("state");
        QTest::newRow("nothing") << 1 << 0 << 401 << 401 << false;
        QTest::newRow("read") << 1 << 1 << 202 << 401 << true;
        QTest::newRow("write") << 1 << 2 << 401 << 202 << false;
        QTest::newRow("both") << 17 << 3 << 202 << 202 << true;
        QTest::newRow("a type that is not shown") << 11 << 3 << 404 << 404 << false;
    }
    void codes_follow_grant_and_type() {
        QFETCH(int, type);
        QFETCH(int, bits);
        const QJsonObject told = explanation({"alice", "e-lamp", "Lamp", type, bits, "home"});
        QTEST(told["read"]["code"].toInt(), "read");
        QTEST(told["write"]["code"].toInt(), "write");
        QTEST(told["state"].toBool(), "state");
    }

    void topics_are_the_users_own() {
        const QJsonObject told = explanation({"alice", "e-lamp", "Lamp", 1, 3, "home/1"});
        QCOMPARE(told["topics"].toObject(),
                 (QJsonObject{
                     {"get", "local/api/v1/alice/CLIENT/request/get/elements/objects_list/e-lamp"},
                     {"set", "local/api/v1/alice/CLIENT/request/set/elements/objects_list/e-lamp"},
                     {"state", "local/api/v1/alice/status/elements/objects_list/e-lamp"},
                     {"connection", "local/home/1/connection"}}));
        QCOMPARE(told["broker"].toObject(),
                 (QJsonObject{{"get", true}, {"set", true}, {"state", true}}));
    }

    void people_read_why() {
        const QString told = explanation_text(explanation({"alice", "e", "Lamp", 1, 1, {}}));
        QVERIFY(
            told.contains("\n            refused with 401: the grant read does not include it\n"));
        QVERIFY(told.contains("\nelement     e, Lamp, type 1\n"));
        QVERIFY(explanation_text(explanation({"alice", "e", "Lamp", 11, 3, {}}))
                    .contains("refused with 404: the API does not show elements of type 11\n"));
    }
};

QTEST_GUILESS_MAIN(tst_explanation)
#include "tst_explanation.moc"
