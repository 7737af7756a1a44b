#include <QTest>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

using utility::utility_t;

namespace {

constexpr const char* source = "server/utility/utility_t";

QJsonValue json(const QString& _text) {
    return QJsonDocument::fromJson("[" + _text.toUtf8() + "]").array().at(0);
}

}  // namespace

class tst_utility_t_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void text_is_parsed_to_the_wanted_kind() {
        const fakes::recording_logger_t logger;
        QCOMPARE(utility_t::QStringToQJsonObject("{\"a\":\"\u00e9\"}").value("a").toString(),
                 QStringLiteral("\u00e9"));
        QCOMPARE(utility_t::QStringToQJSonArray("[1,2]"), (QJsonArray{1, 2}));
        QCOMPARE(utility_t::QStringToQJsonValue("[1,2]"), QJsonValue(QJsonArray{1, 2}));
        QCOMPARE(utility_t::QStringToQJsonValue(R"({"a":1})"), QJsonValue(QJsonObject{{"a", 1}}));
        QVERIFY(logger.lines().isEmpty());
    }

    void a_root_of_the_other_kind_is_empty_without_a_log() {
        const fakes::recording_logger_t logger;
        QVERIFY(utility_t::QStringToQJsonObject("[1]").isEmpty());
        QVERIFY(utility_t::QStringToQJSonArray(R"({"a":1})").isEmpty());
        QVERIFY(logger.lines().isEmpty());
    }

    void broken_text_is_logged_and_empty_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << "";
        QTest::newRow("open") << "{\"a\":";
        QTest::newRow("word") << "abc";
        QTest::newRow("scalar root") << "12";
        QTest::newRow("rest behind the root") << "{} x";
    }
    void broken_text_is_logged_and_empty() {
        fakes::recording_logger_t logger;
        QFETCH(const QString, text);
        QVERIFY(utility_t::QStringToQJsonObject(text).isEmpty());
        QVERIFY(logger.contains("Error parsing file", 2, "QStringToQJsonObject", source, 135));
        QVERIFY(utility_t::QStringToQJSonArray(text).isEmpty());
        QVERIFY(logger.contains("Error parsing file", 2, "QStringToQJSonArray", source, 145));
        QCOMPARE(utility_t::QStringToQJsonValue(text), QJsonValue(QJsonObject()));
        QVERIFY(logger.contains("Error parsing file", 2, "QStringToQJsonValue", source, 156));
        QCOMPARE(logger.lines().size(), 3);
    }

    void json_is_printed_in_the_asked_format() {
        QCOMPARE(utility_t::QJsonArrayToQString({1, "\u00e9"}, QJsonDocument::Compact),
                 QStringLiteral("[1,\"\u00e9\"]"));
        QCOMPARE(utility_t::QJsonObjectToQString({{"a", 1}}, QJsonDocument::Compact), "{\"a\":1}");
        QCOMPARE(utility_t::QJsonObjectToQString({{"a", 1}}, QJsonDocument::Indented),
                 "{\n    \"a\": 1\n}\n");
        QCOMPARE(utility_t::QJsonArrayToQString({1}, QJsonDocument::Indented), "[\n    1\n]\n");
    }

    void array_entries_become_texts() {
        QCOMPARE(utility_t::QJsonArrayToQStringList({"a", 1, 2.5, true}),
                 (QStringList{"a", "1", "2.5", "true"}));
        QVERIFY(utility_t::QJsonArrayToQStringList({}).isEmpty());
    }

    void a_value_is_read_as_boolean_data() {
        QTest::addColumn<QString>("value");
        QTest::addColumn<int>("result");
        QTest::newRow("true") << "true" << 1;
        QTest::newRow("false") << "false" << 0;
        QTest::newRow("number 0 is true") << "0" << 1;
        QTest::newRow("number 1") << "1" << 1;
        QTest::newRow("number 2") << "2" << -1;
        QTest::newRow("number -1") << "-1" << -1;
        QTest::newRow("half") << "0.5" << -1;
        QTest::newRow("1 in single precision") << "1.00000000001" << 1;
        QTest::newRow("0 in single precision") << "1e-60" << 1;
        QTest::newRow("not 1 in single precision") << "1.001" << -1;
        QTest::newRow("text 0") << "\"0\"" << 0;
        QTest::newRow("text 1") << "\"1\"" << 1;
        QTest::newRow("text 2") << "\"2\"" << -1;
        QTest::newRow("text 01") << "\"01\"" << -1;
        QTest::newRow("text 00") << "\"00\"" << -1;
        QTest::newRow("empty text") << "\"\"" << -1;
        QTest::newRow("text true") << "\"true\"" << -1;
        QTest::newRow("line feed behind") << "\"1\\n\"" << -1;
        QTest::newRow("blank before") << "\" 1\"" << -1;
        QTest::newRow("null") << "null" << -1;
        QTest::newRow("object") << "{}" << -1;
        QTest::newRow("array") << "[1]" << -1;
    }
    void a_value_is_read_as_boolean() {
        QFETCH(const QString, value);
        QTEST(utility_t::QJsonValueToBool(json(value)), "result");
    }

    void a_value_is_read_as_number_data() {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("result");
        QTest::newRow("true") << "true"
                              << "1";
        QTest::newRow("false") << "false"
                               << "0";
        QTest::newRow("integer") << "42"
                                 << "42";
        QTest::newRow("negative") << "-2.5"
                                  << "-2.5";
        QTest::newRow("zero") << "0"
                              << "0";
        QTest::newRow("six digits") << "123456"
                                    << "123456";
        QTest::newRow("seven digits") << "1234567"
                                      << "1.23457e+06";
        QTest::newRow("rounded to six") << "0.30000000000000004"
                                        << "0.3";
        QTest::newRow("digits stay") << "\"0042\""
                                     << "0042";
        QTest::newRow("many digits stay") << "\"12345678901234567890\""
                                          << "12345678901234567890";
        QTest::newRow("empty stays") << "\"\""
                                     << "";
        QTest::newRow("12a") << "\"12a\""
                             << "";
        QTest::newRow("signed text") << "\"-1\""
                                     << "";
        QTest::newRow("decimal text") << "\"21.5\""
                                      << "";
        QTest::newRow("line feed behind") << "\"1\\n\""
                                          << "";
        QTest::newRow("digits of another script") << "\"\u0661\""
                                                  << "";
        QTest::newRow("null") << "null"
                              << "";
        QTest::newRow("array") << "[1]"
                               << "";
        QTest::newRow("object") << "{\"a\":1}"
                                << "";
    }
    void a_value_is_read_as_number() {
        QFETCH(const QString, value);
        QTEST(utility_t::QjsonValueToNumber(json(value)), "result");
    }

    void sum_of_decimals_is_rounded() { QCOMPARE(utility_t::QjsonValueToNumber(0.1 + 0.2), "0.3"); }

    void undefined_is_neither_boolean_nor_number() {
        const QJsonValue undefined(QJsonValue::Undefined);
        QCOMPARE(utility_t::QJsonValueToBool(undefined), -1);
        QCOMPARE(utility_t::QjsonValueToNumber(undefined), "");
    }

    void an_object_is_logged_as_text() {
        const fakes::recording_logger_t logger;
        utility_t::printJsonObject({{"a", 1}}, QJsonDocument::Compact);
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains("{\"a\":1}", 6, "printJsonObject", source, 79));
    }

    void a_value_is_logged_by_kind_data() {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("rendering");
        QTest::newRow("array") << "[1, 2]"
                               << "[1,2]";
        QTest::newRow("object") << "{\"a\": 1}"
                                << "{\"a\":1}";
        QTest::newRow("true") << "true"
                              << "true";
        QTest::newRow("false") << "false"
                               << "false";
        QTest::newRow("number") << "1234567"
                                << "1.23457e+06";
        QTest::newRow("null") << "null"
                              << "null";
        QTest::newRow("text") << "\"x\""
                              << "x";
        QTest::newRow("text with a place marker") << "\"%1\""
                                                  << "%1";
    }
    void a_value_is_logged_by_kind() {
        const fakes::recording_logger_t logger;
        QFETCH(const QString, value);
        QFETCH(const QString, rendering);
        utility_t::printJson(json(value), QJsonDocument::Compact);
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains("Value is " + rendering, 4, "printJson", source, 112));
    }

    void a_logged_value_follows_the_format() {
        const fakes::recording_logger_t logger;
        utility_t::printJson(QJsonArray{1}, QJsonDocument::Indented);
        QVERIFY(logger.contains("Value is [\n    1\n]\n", 4, "printJson", source, 112));
    }

    void undefined_is_logged_in_its_known_spelling() {
        const fakes::recording_logger_t logger;
        utility_t::printJson(QJsonValue::Undefined, QJsonDocument::Compact);
        QVERIFY(logger.contains("Value is udefined", 4, "printJson", source, 112));
    }
};

QTEST_GUILESS_MAIN(tst_utility_t_text)
#include "tst_utility_t_text.moc"
