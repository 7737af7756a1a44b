#include "audit/request_entries.h"

#include <QJsonDocument>
#include <QTest>

#include "audit/line_text.h"

using audit::entry_t;
using comunication::exchange_t;

namespace {

const QString root = QStringLiteral("local/api/v1/alice/me/request/");

QJsonObject json(const char* _text) {
    return QJsonDocument::fromJson(_text).object();
}

exchange_t made(const QString& _path, const char* _request, const char* _answer) {
    exchange_t exchange;
    exchange.topic = root + _path;
    exchange.levels = comunication::api_topic_t::parse(exchange.topic);
    exchange.request = json(_request);
    exchange.answer = json(_answer);
    exchange.is_answered = true;
    exchange.bytes = 100;
    return exchange;
}

/// "operation|element|function|value|result|detail" of each.
QStringList short_texts(const QList<entry_t>& _entries) {
    QStringList texts;
    for (const entry_t& entry : _entries) {
        texts.append(QStringList{entry.operation, entry.element, entry.function, entry.value,
                                 entry.result, entry.detail}
                         .join('|'));
    }
    return texts;
}

}  // namespace

class tst_request_entries : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_a_request_did_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QStringList>("texts");
        const auto row = [](const char* _name, const char* _path, const char* _request,
                            const char* _answer, const QStringList& _texts) {
            QTest::newRow(_name) << QString(_path) << QByteArray(_request) << QByteArray(_answer)
                                 << _texts;
        };
        const char* all = "get/elements/objects_list";
        const char* lamp = "get/elements/objects_list/e-lamp";
        const char* set = "set/elements/objects_list";
        const char* set_lamp = "set/elements/objects_list/e-lamp";
        row("read all", all, "{}", R"({"data":{"e-lamp":{}}})", {"read||||ok|"});
        row("read one", lamp, "{}", R"({"data":{"name":"x"}})", {"read|e-lamp|||ok|"});
        row("read refused", lamp, "{}", R"({"error":401,"message":"Unauthorized user"})",
            {"read|e-lamp|||401|Unauthorized user"});
        row("write one", set_lamp, R"({"data":{"functions":{"dim":55.5,"none":true}}})",
            R"({"data":{"functions":{"dim":"202","none":"404"}}})",
            {"write|e-lamp|dim|55.5|202|", "write|e-lamp|none|true|404|"});
        row("write refused", set_lamp, R"({"data":{"functions":{"execute":"1"}}})",
            R"({"data":{"error":401,"message":"Configure user on API on App"}})",
            {"write|e-lamp|execute|1|401|Configure user on API on App"});
        row("write of an unknown element", set_lamp, R"({"data":{"functions":{"execute":1}}})",
            R"({"error":404,"message":"Not found element e-lamp"})",
            {"write|e-lamp|execute|1|404|Not found element e-lamp"});
        row("write of nothing", set_lamp, R"({"data":{"functions":{}}})",
            R"({"error":400,"message":"Non-compliant payload"})",
            {"write|e-lamp|||400|Non-compliant payload"});
        row("write many", set,
            R"({"data":{"a":{"functions":{"x":1,"y":2}},"b":{"functions":{"x":3}},)"
            R"("c":{"functions":{"x":4}}}})",
            R"({"data":{"a":{"functions":{"x":"202","y":"404"}},"b":{"error":401,"message":"no"},)"
            R"("c":{"error":404,"message":"none"}}})",
            {"write|a|x|1|202|", "write|a|y|2|404|", "write|b|x|3|401|no", "write|c|x|4|404|none"});
        row("write many, malformed", set, R"({"data":{"a":1}})",
            R"({"error":400,"message":"Non-compliant payload"})",
            {"write||||400|Non-compliant payload"});
        row("turned away", set_lamp, "{}", R"({"error":429,"message":"Too many requests"})",
            {"write|e-lamp|||429|Too many requests"});
        row("no such route", "get/x", "{}", R"({"error":405,"message":"Topic not valid"})",
            {"request|get/x|||405|Topic not valid"});
        row("not quite that route", "get/elements/objects_listing", "{}", "{}",
            {"request|get/elements/objects_listing|||ok|"});
    }
    void what_a_request_did() {
        QFETCH(QString, path);
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, answer);
        QFETCH(QStringList, texts);
        const exchange_t exchange = made(path, request, answer);
        QCOMPARE(short_texts(audit::request_entries(exchange, 7)), texts);
        // Nothing that is told is dropped before.
        QCOMPARE(short_texts(audit::request_entries(audit::without_answered_data(exchange), 7)),
                 texts);
    }

    void user_word_uuid_and_time_are_the_request_s() {
        const auto entries = audit::request_entries(
            made("get/elements/objects_list", R"({"uuid":"u1"})", R"({"data":{},"uuid":"u1"})"), 7);
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries[0].user, QString("alice"));
        QCOMPARE(entries[0].called, QString("me"));
        QCOMPARE(entries[0].client, QString());
        QCOMPARE(entries[0].uuid, QString("u1"));
        QCOMPARE(entries[0].time, qint64(7));
    }

    void uuid_of_a_refusal_is_its_answer_s() {
        const auto entries = audit::request_entries(
            made("get/elements/objects_list", "{}", R"({"error":413,"uuid":"u2"})"), 7);
        QCOMPARE(entries[0].uuid, QString("u2"));
    }

    void what_nobody_answers_is_told() {
        exchange_t exchange = made("set/elements/objects_list/e-lamp",
                                   R"({"data":{"functions":{"execute":1}}})", "{}");
        exchange.is_answered = false;
        QCOMPARE(short_texts(audit::request_entries(exchange, 7)),
                 QStringList{"write|e-lamp|||no answer|"});
    }

    void a_request_of_many_functions_is_bounded() {
        QJsonObject written;
        QJsonObject answered;
        for (int i = 0; i < 10'000; ++i) {
            written.insert(QString("e-%1").arg(i),
                           QJsonObject{{"functions", QJsonObject{{"execute", 1}}}});
            answered.insert(QString("e-%1").arg(i),
                            QJsonObject{{"functions", QJsonObject{{"execute", "202"}}}});
        }
        exchange_t exchange = made("set/elements/objects_list", "{}", "{}");
        exchange.request = {{"data", written}};
        exchange.answer = {{"data", answered}};
        const auto entries = audit::request_entries(exchange, 7);
        QCOMPARE(entries.size(), audit::most_functions + 1);
        QCOMPARE(entries.back().count, qint64(9'000));
        QCOMPARE(entries.back().operation, QString("write"));
    }

    void nothing_of_what_was_read_is_held() {
        const exchange_t held = audit::without_answered_data(
            made("get/elements/objects_list", R"({"filters":{"types":[1]},"uuid":"u"})",
                 R"({"data":{"e-lamp":{}},"uuid":"u"})"));
        QCOMPARE(held.request, json(R"({"uuid":"u"})"));
        QCOMPARE(held.answer, json(R"({"uuid":"u"})"));
        QCOMPARE(held.bytes, qint64(0));
    }
};

QTEST_GUILESS_MAIN(tst_request_entries)
#include "tst_request_entries.moc"
