#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

#include "endpoint/request_gate_t.h"

using namespace comunication;

class tst_request_gate_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void few_are_passed_at_a_time_and_in_turn() {
        start();
        for (const char* name : {"a1", "a2", "a3", "b1"}) {
            gate->take(request(name));
        }
        QCOMPARE(passed, (QStringList{"a1", "b1"}));
        gate->give_back();
        QCOMPARE(passed, (QStringList{"a1", "b1", "a2"}));
        gate->give_back();
        QCOMPARE(passed, (QStringList{"a1", "b1", "a2"}));
        gate->take(request("c1"));
        gate->take(request("d1"));
        QCOMPARE(passed, (QStringList{"a1", "b1", "a2", "c1"}));
        gate->give_back();
        QCOMPARE(passed, (QStringList{"a1", "b1", "a2", "c1", "d1"}));
        QCOMPARE(refused.size(), 0);
    }

    void a_turn_holds_some_small_ones_in_a_row() {
        start();
        loaded = true;
        QStringList expected;
        for (int i = 0; i < 20; ++i) {
            gate->take(small("a", i));
            expected += small("a", i).topic;
        }
        gate->take(request("b1"));
        gate->take(small("b", 2));
        gate->take(small("c", 3));
        loaded = false;
        gate->pass_on();
        QCOMPARE(passed, expected.mid(0, 16) + QStringList{"b1"});
        for (int i = 0; i < 15; ++i) {
            gate->give_back();
        }
        QCOMPARE(passed.size(), 17);  // the turn is not over
        gate->give_back();
        QCOMPARE(passed.mid(17), QStringList{small("c", 3).topic});
        gate->give_back();
        QCOMPARE(passed.mid(18), expected.mid(16));
    }

    void a_broken_one_ends_the_turn_when_what_was_passed_before_it_is_done() {
        start();
        loaded = true;
        gate->take(small("a", 0));
        gate->take(small("a", 1, "[]"));
        gate->take(small("a", 2));
        loaded = false;
        gate->pass_on();
        QCOMPARE(passed, QStringList{small("a", 0).topic});
        QCOMPARE(refused, QStringList{small("a", 1).topic});
        QCoreApplication::processEvents();
        QCOMPARE(passed.size(), 1);
        gate->give_back();
        QCOMPARE(passed, (QStringList{small("a", 0).topic, small("a", 2).topic}));
    }

    void what_finds_no_room_is_answered_with_its_uuid() {
        limits.waiting_requests = 1;
        start();
        for (const char* name : {"a1", "a2", "a3"}) {
            gate->take(request(name, R"({"uuid":"u"})"));
        }
        QCOMPARE(passed, QStringList{"a1"});
        QCOMPARE(refused, QStringList{"a3"});
        QCOMPARE(answers[0],
                 (QJsonObject{{"error", 429}, {"message", "Too many requests"}, {"uuid", "u"}}));
        QCOMPARE(counts.requests_refused, quint64(1));
    }

    void too_large_a_payload_is_refused_before_it_waits() {
        limits.request_bytes = 19;
        start();
        gate->take(request("a1", "{\"uuid\":\"u\",\"a\":123}"));
        gate->take(request("a2", "{\"uuid\":\"u\",\"a\":12}"));
        QCOMPARE(refused, QStringList{"a1"});
        QCOMPARE(passed, QStringList{"a2"});
        QCOMPARE(answers[0],
                 (QJsonObject{{"error", 413}, {"message", "Too large request"}, {"uuid", "u"}}));
    }

    void what_holds_too_much_is_refused_in_its_turn_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("error");
        QTest::newRow("a filter bomb")
            << "{\"filters\":{\"types\":[" + QByteArray("1,").repeated(1000) + "1]}}" << 413;
        QTest::newRow("a value bomb")
            << "{\"data\":{\"functions\":{\"execute\":\"" + QByteArray(1025, '9') + "\"}}}" << 413;
        QTest::newRow("no object") << QByteArray("[]") << 400;
    }
    void what_holds_too_much_is_refused_in_its_turn() {
        QFETCH(QByteArray, payload);
        QFETCH(int, error);
        limits.at_once = 1;
        start();
        gate->take(request("a1", payload));
        gate->take(request("a2"));
        QCOMPARE(passed, QStringList());  // others come in between
        QCOMPARE(refused, QStringList{"a1"});
        QCOMPARE(answers[0]["error"], QJsonValue(error));
        QTRY_COMPARE(passed, QStringList{"a2"});
        gate->give_back();
        gate->take(request("a3"));
        QCOMPARE(passed, (QStringList{"a2", "a3"}));
    }

    void a_rate_may_be_set() {
        limits.requests_per_second = 2;
        limits.at_once = 100;
        start();
        for (const char* name : {"a1", "a2", "a3", "a4", "b1"}) {
            gate->take(request(name));
        }
        QCOMPARE(refused, (QStringList{"a3", "a4"}));
        gate->give_back();
        QCOMPARE(passed, (QStringList{"a1", "b1", "a2"}));
    }

    void a_flood_of_refusals_is_not_answered_to_its_end() {
        limits.waiting_requests = 0;
        limits.refused_bytes_per_second = 10 * 1024;
        start();
        for (int i = 0; i < 1000; ++i) {
            gate->take(request("a1"));
        }
        gate->take(request("b1"));
        QVERIFY(refused.size() < 100);
        QCOMPARE(refused.last(), QStringLiteral("b1"));
        QCOMPARE(counts.requests_refused, quint64(1001));
        QCOMPARE(counts.refusals_dropped + quint64(refused.size()), quint64(1001));
    }

    void each_refused_one_is_told_also_without_an_answer() {
        limits.waiting_requests = 0;
        limits.refused_bytes_per_second = 10 * 1024;
        start();
        for (int i = 0; i < 1000; ++i) {
            gate->take(request("a1", R"({"uuid":"u"})"));
        }
        QCOMPARE(turned_away.size(), 1000);
        QCOMPARE(turned_away.first()["uuid"], QJsonValue("u"));
        // Found only where somebody is answered: it has to be read.
        QCOMPARE(turned_away.last(),
                 (QJsonObject{{"error", 429}, {"message", "Too many requests"}}));
    }

    void one_without_an_object_is_told_too() {
        start();
        gate->take(request("a1", "[]"));
        QCOMPARE(turned_away.size(), 1);
        QCOMPARE(turned_away[0]["error"], QJsonValue(400));
    }

    void what_waits_can_be_forgotten() {
        start();
        for (const char* name : {"a1", "a2", "a3"}) {
            gate->take(request(name));
        }
        gate->clear();
        gate->give_back();
        QCOMPARE(passed, QStringList{"a1"});
        gate->take(request("a4"));
        QCOMPARE(passed, (QStringList{"a1", "a4"}));
    }

    void nothing_is_passed_while_much_waits_for_the_broker() {
        start();
        loaded = true;
        gate->take(request("a1"));
        QCOMPARE(passed, QStringList());
        loaded = false;
        gate->pass_on();
        QCOMPARE(passed, QStringList{"a1"});
    }

    void init() {
        limits = {};
        loaded = false;
        for (auto* count : {&counts.requests_refused, &counts.refusals_dropped}) {
            *count = 0;
        }
    }

 private:
    void start() {
        passed.clear();
        refused.clear();
        answers.clear();
        turned_away.clear();
        gate = std::make_unique<request_gate_t>(limits, counts, [this]() { return loaded; });
        connect(gate.get(), &request_gate_t::passed, this,
                [this](const request_t& _request) { passed += _request.topic; });
        connect(gate.get(), &request_gate_t::refused, this,
                [this](const QString& _topic, const QJsonObject& _answer) {
                    refused += _topic;
                    answers += _answer;
                });
        connect(gate.get(), &request_gate_t::turned_away, this,
                [this](const request_t&, const QJsonObject& _answer) { turned_away += _answer; });
    }

    /// The user is the first letter; the topic is @p _name.
    static request_t request(const char* _name, const QByteArray& _payload = "{}") {
        request_t made;
        made.levels.user = QChar::fromLatin1(_name[0]);
        made.topic = QString::fromLatin1(_name);
        made.payload = _payload;
        return made;
    }

    /// Reads one element.
    static request_t small(const char* _user, int _number, const QByteArray& _payload = "{}") {
        request_t made;
        made.topic = QStringLiteral("local/api/v1/%1/app/request/get/elements/objects_list/e-%2")
                         .arg(QLatin1String(_user))
                         .arg(_number);
        made.levels = api_topic_t::parse(made.topic);
        made.payload = _payload;
        return made;
    }

    request_limits_t limits;
    endpoint_counters_t counts;
    bool loaded = false;
    std::unique_ptr<request_gate_t> gate;
    QStringList passed;
    QStringList refused;
    QList<QJsonObject> answers;
    QList<QJsonObject> turned_away;
};

QTEST_GUILESS_MAIN(tst_request_gate_t)
#include "tst_request_gate_t.moc"
