#include "bench/load/echo.h"

#include <QtTest>

using namespace bench;

class tst_echo : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_uuid_is_found_from_the_end_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("uuid");
        QTest::newRow("request") << QByteArray(R"({"uuid":"17"})") << 17;
        QTest::newRow("answer") << QByteArray(R"({"data":{"name":"L"},"uuid":"0"})") << 0;
        QTest::newRow("last of two") << QByteArray(R"({"a":{"uuid":"1"},"uuid":"2"})") << 2;
        QTest::newRow("none") << QByteArray(R"({"data":{}})") << -1;
        QTest::newRow("no number") << QByteArray(R"({"uuid":"x"})") << -1;
        QTest::newRow("cut off") << QByteArray("{\"uuid\":\"") << -1;
        QTest::newRow("nothing") << QByteArray() << -1;
    }
    void the_uuid_is_found_from_the_end() {
        QFETCH(QByteArray, payload);
        QTEST(int(uuid_in({payload.constData(), std::size_t(payload.size())})), "uuid");
    }

    void an_answer_has_the_size_and_the_uuid() {
        const std::string answer = echo_payload(R"({"uuid":"123"})", 86);
        QCOMPARE(answer.size(), std::size_t(86));
        QCOMPARE(uuid_in(answer), 123L);
        QVERIFY(QJsonDocument::fromJson(QByteArray::fromStdString(answer)).isObject());
        // Smaller than what it has to hold: as small as it can be.
        QCOMPARE(uuid_in(echo_payload(R"({"uuid":"123"})", 1)), 123L);
    }

    void a_value_is_found_in_a_state_and_in_a_write() {
        QCOMPARE(value_in(state_payload(17, 74)), 17L);
        QCOMPARE(state_payload(17, 74).size(), std::size_t(74));
        QCOMPARE(value_in("{\"data\":{\"functions\":{\"execute\":\"5\"}}}"), 5L);
        QCOMPARE(value_in("{\"uuid\":\"5\"}"), -1L);
    }

    void an_answer_goes_where_the_server_or_a_user_may_answer() {
        const std::string request = "local/api/v1/u/me/request/get/elements/objects_list/e-1";
        QCOMPARE(echo_topic(request, "me", echo_way_t::as_server),
                 std::string("local/api/v1/u/me/status/get/elements/objects_list/e-1"));
        QCOMPARE(echo_topic(request, "me", echo_way_t::as_user),
                 std::string("local/api/v1/u/re-me/request/get/elements/objects_list/e-1"));
    }
};

QTEST_GUILESS_MAIN(tst_echo)
#include "tst_echo.moc"
