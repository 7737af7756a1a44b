#include "endpoint/exchanges_t.h"

#include <QTest>

using comunication::exchange_t;
using comunication::exchanges_t;
using comunication::request_t;

namespace {

request_t request(const char* _client) {
    request_t made;
    made.topic = QStringLiteral("local/api/v1/alice/%1/request/get/x").arg(_client);
    made.levels = comunication::api_topic_t::parse(made.topic);
    made.payload = "{}";
    return made;
}

QString answer_topic(const char* _client) {
    return QStringLiteral("local/api/v1/alice/%1/status/get/x").arg(_client);
}

QJsonObject packet(const char* _uuid) {
    return {{"uuid", _uuid}};
}

}  // namespace

class tst_exchanges_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void an_answer_completes_its_request() {
        exchanges_t exchanges;
        exchanges.pass(request("a"), {{"uuid", "1"}, {"data", 5}});
        const auto found =
            exchanges.answer(answer_topic("a"), QJsonObject{{"uuid", "1"}, {"x", 1}});
        QVERIFY(found.has_value());
        QCOMPARE(found->topic, request("a").topic);
        QCOMPARE(found->levels.user, QString("alice"));
        QCOMPARE(found->request["data"], QJsonValue(5));
        QCOMPARE(found->answer["x"], QJsonValue(1));
        QVERIFY(found->is_answered);
        QVERIFY(found->bytes > 0);
        QVERIFY(!exchanges.done().has_value());
    }

    void another_topic_or_uuid_answers_nothing_data() {
        QTest::addColumn<QString>("topic");
        QTest::addColumn<QJsonObject>("payload");
        QTest::newRow("topic") << answer_topic("b") << packet("1");
        QTest::newRow("uuid") << answer_topic("a") << packet("2");
        QTest::newRow("no uuid") << answer_topic("a") << QJsonObject();
        QTest::newRow("a state") << QStringLiteral(
                                        "local/api/v1/alice/status/elements/objects_list/e")
                                 << packet("1");
    }
    void another_topic_or_uuid_answers_nothing() {
        QFETCH(QString, topic);
        QFETCH(QJsonObject, payload);
        exchanges_t exchanges;
        exchanges.pass(request("a"), packet("1"));
        QVERIFY(!exchanges.answer(topic, payload).has_value());
        const auto silent = exchanges.done();
        QVERIFY(silent.has_value());
        QVERIFY(!silent->is_answered);
    }

    void each_answer_counts_once_and_in_order() {
        exchanges_t exchanges;
        exchanges.pass(request("a"), {{"n", 1}});
        exchanges.pass(request("a"), {{"n", 2}});
        QCOMPARE(exchanges.answer(answer_topic("a"), QJsonObject())->request["n"], QJsonValue(1));
        QCOMPARE(exchanges.answer(answer_topic("a"), QJsonObject())->request["n"], QJsonValue(2));
        QVERIFY(!exchanges.answer(answer_topic("a"), QJsonObject()).has_value());
    }

    void answers_may_come_in_another_order() {
        exchanges_t exchanges;
        exchanges.pass(request("a"), packet("1"));
        exchanges.pass(request("b"), packet("2"));
        QVERIFY(exchanges.answer(answer_topic("b"), packet("2")).has_value());
        QVERIFY(exchanges.done().has_value());  // a's, silent
        QVERIFY(!exchanges.done().has_value());
        QVERIFY(!exchanges.done().has_value());
    }
};

QTEST_GUILESS_MAIN(tst_exchanges_t)
#include "tst_exchanges_t.moc"
