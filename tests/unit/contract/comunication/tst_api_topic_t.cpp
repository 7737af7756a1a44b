#include <QTest>

#include "comunication/api_topic_t.h"
#include "kit/name_samples.h"

using comunication::api_topic_t;

class tst_api_topic_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void parse_reads_the_levels_data();
    void parse_reads_the_levels();
    void names_are_held_to_the_rule_data();
    void names_are_held_to_the_rule();
};

void tst_api_topic_t::parse_reads_the_levels_data() {
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QStringList>("expected");  // version, user, client, type
    const QStringList none{{}, {}, {}, {}};
    QTest::newRow("request") << "local/api/v1/alice/phone/request/get/elements/objects_list"
                             << QStringList{"v1", "alice", "phone", "request"};
    QTest::newRow("bare request") << "local/api/v2/alice/phone/request"
                                  << QStringList{"v2", "alice", "phone", "request"};
    QTest::newRow("status") << "local/api/v1/alice/status/elements/objects_list/e-1"
                            << QStringList{"v1", "alice", "", "status"};
    QTest::newRow("bare status") << "local/api/v1/alice/status"
                                 << QStringList{"v1", "alice", "", "status"};
    QTest::newRow("client named status")
        << "local/api/v1/alice/status/request/x" << QStringList{"v1", "alice", "status", "request"};
    QTest::newRow("client named request") << "local/api/v1/alice/request/request/x"
                                          << QStringList{"v1", "alice", "request", "request"};
    QTest::newRow("user named status")
        << "local/api/v1/status/phone/request/x" << QStringList{"v1", "status", "phone", "request"};
    QTest::newRow("empty client") << "local/api/v1/alice//request/x"
                                  << QStringList{"v1", "alice", "", "request"};
    QTest::newRow("status of a client") << "local/api/v1/alice/phone/status/x" << none;
    QTest::newRow("request without client") << "local/api/v1/alice/request/get" << none;
    QTest::newRow("empty user") << "local/api/v1//phone/request/x" << none;
    QTest::newRow("empty version") << "local/api//alice/status/x" << none;
    QTest::newRow("other root") << "remote/api/v1/alice/status/x" << none;
    QTest::newRow("too short") << "local/api/v1/alice" << none;
    QTest::newRow("longer word") << "local/api/v1/alice/phone/requests/x" << none;
    QTest::newRow("upper case") << "local/api/v1/alice/phone/REQUEST/x" << none;
    QTest::newRow("leading slash") << "/local/api/v1/alice/status/x" << none;
    QTest::newRow("empty") << "" << none;
}

void tst_api_topic_t::parse_reads_the_levels() {
    QFETCH(QString, topic);
    QFETCH(QStringList, expected);
    const api_topic_t found = api_topic_t::parse(topic);
    QCOMPARE(QStringList({found.version, found.user, found.client, found.type}), expected);
    QCOMPARE(found.is_valid(), !expected[3].isEmpty());
    QCOMPARE(found.is_request(), expected[3] == "request");
    const qsizetype word = topic.lastIndexOf("request/");
    QCOMPARE(found.path, !found.is_request() ? 0 : word < 0 ? topic.size() : word + 8);
}

void tst_api_topic_t::names_are_held_to_the_rule_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("accepted");
    for (const sample::name_t& name : sample::identifiers()) {
        QTest::newRow(name.title) << name.text << name.error.isEmpty();
    }
}

void tst_api_topic_t::names_are_held_to_the_rule() {
    QFETCH(QString, name);
    for (const char* topic :
         {"local/api/v1/%1/phone/request/x", "local/api/v1/%1/status/x",
          "local/api/%1/alice/phone/request/x", "local/api/%1/alice/status/x"}) {
        QTEST(api_topic_t::parse(QString::fromLatin1(topic).arg(name)).is_valid(), "accepted");
    }
}

QTEST_GUILESS_MAIN(tst_api_topic_t)
#include "tst_api_topic_t.moc"
