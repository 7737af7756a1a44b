#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include "endpoint/request_rules.h"

using comunication::request_limits_t;
namespace request_rules = comunication::request_rules;

namespace {

/// @p _text with its quotation marks doubled: the meta-object compiler stumbles over raw texts.
QByteArray json(const char* _text) {
    return QByteArray(_text).replace('\'', '"');
}

}  // namespace

class tst_request_rules : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_request_that_reads_one_element_is_small_data() {
        QTest::addColumn<QString>("topic");
        QTest::addColumn<bool>("is_small");
        const auto row = [](const char* _topic, bool _is_small) {
            QTest::newRow(_topic) << QString(_topic) << _is_small;
        };
        row("local/api/v1/bob/app/request/get/elements/objects_list/e-1", true);
        row("local/api/v1/bob/app/request/get/elements/objects_list", false);
        row("local/api/v1/bob/app/request/set/elements/objects_list/e-1", false);
        row("local/api/v1/bob/get/request/set/elements/objects_list/e-1", false);
        row("local/api/v1/bob/status/request/get/elements/objects_list/e-1", true);
        row("local/api/v1/bob/app/request", false);
        row("local/api/v1/bob/status/get/elements/objects_list/e-1", false);
    }
    void a_request_that_reads_one_element_is_small() {
        QFETCH(const QString, topic);
        QFETCH(const bool, is_small);
        const auto levels = comunication::api_topic_t::parse(topic);
        QCOMPARE(request_rules::is_small({levels, topic, QByteArray(1'024, ' ')}), is_small);
        QVERIFY(!request_rules::is_small({levels, topic, QByteArray(1'025, ' ')}));
    }

    void lists_and_texts_have_a_largest_size_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<bool>("too_large");
        const auto row = [](const char* _name, const QByteArray& _payload, bool _too_large) {
            QTest::newRow(_name) << _payload << _too_large;
        };
        row("nothing", "{}", false);
        row("three types", json("{'filters':{'types':[1,2,3]}}"), false);
        row("four types", json("{'filters':{'types':[1,2,3,4]}}"), true);
        row("four functions", json("{'filters':{'functions':['a','b','c','d']}}"), true);
        row("no list", json("{'filters':{'types':'12345678'}}"), false);
        row("six bytes", json("{'data':{'functions':{'execute':'123456'}}}"), false);
        row("seven bytes", json("{'data':{'functions':{'execute':'1234567'}}}"), true);
        row("seven bytes in four letters", json("{'data':{'functions':{'execute':'äöü1'}}}"), true);
        row("six bytes in three letters", json("{'data':{'functions':{'execute':'äöü'}}}"), false);
        row("of an element of a list", json("{'data':{'e':{'functions':{'dim':'1234567'}}}}"),
            true);
        row("in a list", json("{'data':[['1234567']]}"), true);
        row("a number", json("{'data':{'functions':{'execute':1234567}}}"), false);
        row("a long name", json("{'data':{'functions':{'a-long-name':'1'}}}"), false);
        row("elsewhere", json("{'padding':'1234567'}"), false);
    }
    void lists_and_texts_have_a_largest_size() {
        QFETCH(QByteArray, payload);
        request_limits_t limits;
        limits.filter_entries = 3;
        limits.value_bytes = 6;
        const QJsonDocument document = QJsonDocument::fromJson(payload);
        QVERIFY(document.isObject());
        QTEST(request_rules::is_too_large(document.object(), limits), "too_large");
    }

    void the_uuid_is_found_as_the_answer_s_reader_finds_it_data() {
        QTest::addColumn<QByteArray>("payload");
        for (const QByteArray& payload :
             {json("{'uuid':'a'}"), json("{'uuid':''}"), json("{'uuid':5}"),
              json("{'uuid':null,'a':'b'}"), json("{ 'uuid' : 'a b' }"), json("{'a':1,'uuid':'x'}"),
              json("{'a':'uuid','b':'c'}"), json("{'a':{'uuid':'inner'},'uuid':'outer'}"),
              json("{'a':['uuid','x'],'uuid':'y'}"), json("{'a':{'uuid':'inner'}}"),
              json("{'uuid':{'uuid':'x'}}"), json("{'uuid':['x']}"),
              json("{'a':'},{\\'uuid\\':\\'no\\'','uuid':'yes'}"),
              json("{'uuid':'q\\'u\\\\o\\u00e4'}"), json("{'a\\\\':'\\\\','uuid':'z'}"),
              json("[{'uuid':'a'}]"), json("{}")}) {
            QTest::newRow(payload) << payload;
        }
    }
    void the_uuid_is_found_as_the_answer_s_reader_finds_it() {
        QFETCH(QByteArray, payload);
        const QJsonDocument document = QJsonDocument::fromJson(payload);
        QVERIFY(!document.isNull());
        QCOMPARE(request_rules::uuid_of(payload), document.object()["uuid"].toString());
    }

    void broken_or_endless_text_has_none_or_what_came_first_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QString>("uuid");
        QTest::newRow("empty") << QByteArray() << QString();
        QTest::newRow("cut off in the text") << QByteArray(json("{'uuid':'ab")) << QString();
        QTest::newRow("cut off behind it") << QByteArray(json("{'uuid':'ab',")) << "ab";
        QTest::newRow("backslash at the end") << QByteArray("{\"uuid\":\"ab\\") << QString();
        QTest::newRow("closed too often") << QByteArray(json("}}}{'uuid':'ab'}")) << QString();
        QTest::newRow("longest") << "{\"uuid\":\"" + QByteArray(1024, 'u') + "\"}"
                                 << QString(1024, 'u');
        QTest::newRow("too long") << "{\"uuid\":\"" + QByteArray(1025, 'u') + "\"}" << QString();
    }
    void broken_or_endless_text_has_none_or_what_came_first() {
        QFETCH(QByteArray, payload);
        QTEST(request_rules::uuid_of(payload), "uuid");
    }

    void refusals_have_these_texts() {
        QCOMPARE(request_rules::malformed(),
                 (QJsonObject{{"error", 400}, {"message", "Non-compliant payload"}}));
        QCOMPARE(request_rules::too_many("u"),
                 (QJsonObject{{"error", 429}, {"message", "Too many requests"}, {"uuid", "u"}}));
        QCOMPARE(request_rules::too_large(""),
                 (QJsonObject{{"error", 413}, {"message", "Too large request"}}));
        QCOMPARE(request_rules::too_large_an_answer("u"),
                 (QJsonObject{{"error", 413}, {"message", "Too large answer"}, {"uuid", "u"}}));
    }
};

QTEST_GUILESS_MAIN(tst_request_rules)
#include "tst_request_rules.moc"
