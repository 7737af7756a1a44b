#include "broker/plugin/topic_judge.h"

#include <QTest>

using namespace broker::plugin;

class tst_topic_judge : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void write_data();
    void write();
    void read_data();
    void read();
    void subscribe_data();
    void subscribe();
    void nothing_is_allowed_to_nobody();
};

void tst_topic_judge::write_data() {
    QTest::addColumn<QByteArray>("topic");
    QTest::addColumn<bool>("allowed");
    const auto row = [](const char* _topic, bool _allowed) {
        QTest::newRow(_topic) << QByteArray(_topic) << _allowed;
    };
    row("local/api/v1/alice/phone/request", true);
    row("local/api/v1/alice/phone/request/", true);
    row("local/api/v1/alice/phone/request/get/elements", true);
    row("local/api/v1/alice//request/x", true);
    row("local/api/v1/alice/request/request/x", true);
    row("local/api/v1/alice/phone/requests/x", false);
    row("local/api/v1/alice/phone/status/x", false);
    row("local/api/v1/alice/request/x", false);
    row("local/api/v1/alice/status/x", false);
    row("local/api/v1/alice/a/b/request/x", false);
    row("local/api/v1/alice", false);
    row("local/api/v1/alice/phone", false);
    row("local/api/v1/bob/phone/request/x", false);
    row("local/api/v1/alicea/phone/request/x", false);
    row("local/api/v1/alic/phone/request/x", false);
    row("local/api/v1//phone/request/x", false);
    row("local/api/v2/alice/phone/request/x", false);
    row("/local/api/v1/alice/phone/request/x", false);
    row("local/api/v1/alice/phone//request/x", false);
    row("home/1/connection", false);
    row("$CONTROL/torlan/v1", false);
    row("$SYS/broker/connection/x/state", false);
    row("", false);
}

void tst_topic_judge::write() {
    QFETCH(QByteArray, topic);
    QTEST(may_write("alice", topic.constData(), false), "allowed");
    QVERIFY(!may_write("alice", topic.constData(), true));
}

void tst_topic_judge::read_data() {
    QTest::addColumn<QByteArray>("topic");
    QTest::addColumn<bool>("allowed");
    const auto row = [](const char* _topic, bool _allowed) {
        QTest::newRow(_topic) << QByteArray(_topic) << _allowed;
    };
    row("local/api/v1/alice", true);
    row("local/api/v1/alice/status/e-1", true);
    row("local/api/v1/alice/phone/request/x", true);
    row("home/1/connection", true);
    row("home/1/connection/x", false);
    row("home/1", false);
    row("local/api/v1/bob/status/e-1", false);
    row("local/api/v1/alicea", false);
    row("local/api/v1", false);
    row("$SYS/x", false);
    row("$CONTROL/torlan/v1/report", false);
}

void tst_topic_judge::read() {
    QFETCH(QByteArray, topic);
    QTEST(may_read("alice", topic.constData(), "home/1/connection"), "allowed");
}

void tst_topic_judge::subscribe_data() {
    QTest::addColumn<QByteArray>("filter");
    QTest::addColumn<bool>("allowed");
    const auto row = [](const char* _filter, bool _allowed) {
        QTest::newRow(_filter) << QByteArray(_filter) << _allowed;
    };
    row("local/api/v1/alice/#", true);
    row("local/api/v1/alice", true);
    row("local/api/v1/alice/+/status/+", true);
    row("home/1/connection", true);
    row("home/1/#", false);
    row("home/+/connection", false);
    row("#", false);
    row("+/#", false);
    row("+", false);
    row("local/#", false);
    row("local/api/+/alice/#", false);
    row("local/api/v1/+/#", false);
    row("local/api/v1/+", false);
    row("local/api/v1/bob/#", false);
    row("local/api/v1/alice+", false);
    row("$SYS/#", false);
    row("$CONTROL/#", false);
    row("$share/g/local/api/v1/alice/#", true);
    row("$share/g/local/api/v1/alice", true);
    row("$share/g/local/api/v1/bob/#", false);
    row("$share/g/#", false);
    row("$share/g/$SYS/#", false);
    row("$share/g/home/1/connection", false);
    row("$share//local/api/v1/alice/#", false);
    row("$share/+/local/api/v1/alice/#", false);
    row("$share/#", false);
    row("$share/g", false);
    row("$share/g/", false);
    row("$share", false);
    row("$share/", false);
    row("$share/local/api/v1/alice/#", false);
    row("$share/g/$share/g/local/api/v1/alice/#", false);
    row("$SHARE/g/local/api/v1/alice/#", false);
    row("$shared/g/local/api/v1/alice/#", false);
}

void tst_topic_judge::subscribe() {
    QFETCH(QByteArray, filter);
    QTEST(may_subscribe("alice", filter.constData(), "home/1/connection"), "allowed");
}

void tst_topic_judge::nothing_is_allowed_to_nobody() {
    QVERIFY(!may_write("", "local/api/v1//phone/request/x", false));
    QVERIFY(!may_read("", "local/api/v1//status", ""));
    QVERIFY(!may_read("alice", "", ""));
    QVERIFY(!may_subscribe("alice", "", ""));
}

QTEST_GUILESS_MAIN(tst_topic_judge)
#include "tst_topic_judge.moc"
