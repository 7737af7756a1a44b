#include <QTest>

#include "endpoint/incoming_t.h"

using comunication::incoming_t;
using action_t = incoming_t::action_t;
Q_DECLARE_METATYPE(action_t)

class tst_incoming_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void judge_decides_by_topic_payload_and_flags_data();
    void judge_decides_by_topic_payload_and_flags();
};

void tst_incoming_t::judge_decides_by_topic_payload_and_flags_data() {
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("retain");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<action_t>("action");
    QTest::addColumn<QJsonObject>("object");
    const QJsonObject object{{"a", 1}};
    const auto row = [](const char* _tag, const char* _topic, const QByteArray& _payload,
                        bool _retain, bool _enabled, action_t _action,
                        const QJsonObject& _object = {}) {
        QTest::newRow(_tag) << QString(_topic) << _payload << _retain << _enabled << _action
                            << _object;
    };
    const char* const request = "local/api/v1/alice/phone/request/x";
    const char* const status = "local/api/v1/alice/status/x";
    row("request", request, "{\"a\":1}", false, true, action_t::take);
    row("empty request", request, "", false, true, action_t::take);
    row("malformed request", request, "[]", false, true, action_t::take);
    row("request, disabled", request, "{}", false, false, action_t::ignore);
    row("malformed request, disabled", request, "[]", false, false, action_t::ignore);
    row("retained request", request, "{}", true, true, action_t::clear);
    row("retained request, disabled", request, "{}", true, false, action_t::clear);
    row("retained malformed request", request, "[]", true, true, action_t::clear);
    row("cleared request", request, "", true, true, action_t::ignore);
    row("status", status, "{\"a\":1}", false, true, action_t::pass_on, object);
    row("retained status", status, "{\"a\":1}", true, true, action_t::pass_on, object);
    row("malformed status", status, "[", true, true, action_t::pass_on);
    row("deleted status", status, "", true, true, action_t::ignore);
    row("deleted status, live", status, "", false, true, action_t::ignore);
    row("status, disabled", status, "{}", true, false, action_t::ignore);
    row("user against the rule", "local/api/v1/a b/phone/request/x", "{}", false, true,
        action_t::ignore);
    row("version against the rule", "local/api/v+1/alice/phone/request/x", "{}", false, true,
        action_t::ignore);
    row("malformed, user against the rule", "local/api/v1/a b/phone/request/x", "[]", false, true,
        action_t::ignore);
    row("other topic", "other", "{}", false, true, action_t::ignore);
    row("other topic, malformed", "other", "[]", false, true, action_t::ignore);
}

void tst_incoming_t::judge_decides_by_topic_payload_and_flags() {
    QFETCH(QString, topic);
    QFETCH(QByteArray, payload);
    QFETCH(bool, retain);
    QFETCH(bool, enabled);
    QFETCH(QJsonObject, object);
    const incoming_t message = incoming_t::judge(topic, payload, retain, enabled);
    QTEST(message.action, "action");
    QCOMPARE(message.payload, object);
}

QTEST_GUILESS_MAIN(tst_incoming_t)
#include "tst_incoming_t.moc"
