#include <QTest>

#include "comunication/api_topics.h"

using namespace comunication;

class tst_api_topics : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void words_are_as_clients_know_them();
    void answer_replaces_every_request_data();
    void answer_replaces_every_request();
    void retained_topics_hold_identifiers_data();
    void retained_topics_hold_identifiers();
};

void tst_api_topics::words_are_as_clients_know_them() {
    QCOMPARE(api_topics::request_filter, QString("local/api/+/+/+/request/#"));
    QCOMPARE(api_topics::status_filter, QString("local/api/+/+/status/#"));
    QCOMPARE(api_topics::status_filter_of("alice"), QString("local/api/+/alice/status/#"));
    QCOMPARE(api_topics::user_root(api_topics::version_1, "alice"), QString("local/api/v1/alice"));
    QCOMPARE(api_topics::user_root("%2", "a"), QString("local/api/%2/a"));
    QCOMPARE(api_topics::element_state(api_topics::version_1, "alice", "e-lamp"),
             QString("local/api/v1/alice/status/elements/objects_list/e-lamp"));
    QCOMPARE(api_topics::element_request(api_topics::version_1, "alice", "me", "get", "e-lamp"),
             QString("local/api/v1/alice/me/request/get/elements/objects_list/e-lamp"));
    QCOMPARE(api_topics::connection("home/1"), QString("local/home/1/connection"));
}

void tst_api_topics::answer_replaces_every_request_data() {
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QString>("answer");
    QTest::newRow("one") << "local/api/v1/alice/phone/request/get"
                         << "local/api/v1/alice/phone/status/get";
    QTest::newRow("everywhere") << "local/api/v1/request/my-request/request/get"
                                << "local/api/v1/status/my-status/status/get";
    QTest::newRow("case counts") << "a/Request"
                                 << "a/Request";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_api_topics::answer_replaces_every_request() {
    QFETCH(QString, topic);
    QTEST(api_topics::answer(topic), "answer");
}

void tst_api_topics::retained_topics_hold_identifiers_data() {
    QTest::addColumn<QString>("topic");
    QTest::addColumn<bool>("may");
    const QString list = "local/api/v1/alice/status/elements/objects_list";
    QTest::newRow("element") << list + "/e-1" << true;
    QTest::newRow("list") << list << true;
    QTest::newRow("user") << "local/api/v1/a b/status/elements/objects_list/e-1" << false;
    QTest::newRow("no user") << "local/api/v1//status/elements/objects_list/e-1" << false;
    QTest::newRow("blank") << list + "/e 1" << false;
    QTest::newRow("empty level") << list + "/" << false;
    QTest::newRow("wildcard") << list + "/+" << false;
    QTest::newRow("control character") << list + "/e\n" << false;
    QTest::newRow("long") << list + "/" + QString(65, 'x') << false;
    QTest::newRow("longest") << list + "/" + QString(64, 'x') << true;
    QTest::newRow("reserved word") << list + "/my-request" << false;
    QTest::newRow("not the API's") << "local/home 1/connection" << true;
    QTest::newRow("another root") << "local/apix/a b" << true;
}

void tst_api_topics::retained_topics_hold_identifiers() {
    QFETCH(QString, topic);
    QTEST(api_topics::may_be_retained(topic), "may");
}

QTEST_GUILESS_MAIN(tst_api_topics)
#include "tst_api_topics.moc"
