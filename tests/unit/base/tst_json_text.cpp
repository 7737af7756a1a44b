#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

#include "base/json_text.h"

class tst_json_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void exactly_one_value_is_read_data();
    void exactly_one_value_is_read();
    void other_texts_are_refused_data();
    void other_texts_are_refused();
    void values_are_written_compact_data();
    void values_are_written_compact();
};

void tst_json_text::exactly_one_value_is_read_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("string") << QByteArray("\"a\\\"b\"") << QJsonValue("a\"b");
    QTest::newRow("number") << QByteArray("-1.5") << QJsonValue(-1.5);
    QTest::newRow("true") << QByteArray("true") << QJsonValue(true);
    QTest::newRow("null") << QByteArray("null") << QJsonValue(QJsonValue::Null);
    QTest::newRow("object") << QByteArray("{\"a\":1}") << QJsonValue(QJsonObject{{"a", 1}});
    QTest::newRow("array") << QByteArray("[1,2]") << QJsonValue(QJsonArray{1, 2});
    QTest::newRow("empty array") << QByteArray("[]") << QJsonValue(QJsonArray());
    QTest::newRow("white space around") << QByteArray(" \r\n1\t") << QJsonValue(1);
}

void tst_json_text::exactly_one_value_is_read() {
    QFETCH(QByteArray, text);
    QFETCH(QJsonValue, value);
    QCOMPARE(base::json_from_text(text), value);
}

void tst_json_text::other_texts_are_refused_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("white space") << QByteArray(" \n");
    QTest::newRow("a word") << QByteArray("hello");
    QTest::newRow("two values") << QByteArray("1,2");
    QTest::newRow("two arrays") << QByteArray("1],[2");
    QTest::newRow("rest after the value") << QByteArray("{} x");
    QTest::newRow("open object") << QByteArray("{\"a\":");
    QTest::newRow("open string") << QByteArray("\"a");
    QTest::newRow("trailing comma") << QByteArray("1,");
    QTest::newRow("not UTF-8") << QByteArray("\"\xff\xfe\"");
    QTest::newRow("zero byte after it") << QByteArray("1\0", 2);
    QTest::newRow("deeper than any reader") << QByteArray(5000, '[') + QByteArray(5000, ']');
}

void tst_json_text::other_texts_are_refused() {
    QFETCH(QByteArray, text);
    QVERIFY(!base::json_from_text(text));
}

void tst_json_text::values_are_written_compact_data() {
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("string") << QJsonValue("a\"b") << QByteArray("\"a\\\"b\"");
    QTest::newRow("number") << QJsonValue(21.5) << QByteArray("21.5");
    QTest::newRow("no ASCII") << QJsonValue(QString::fromUtf8("é")) << QByteArray("\"é\"");
    QTest::newRow("null") << QJsonValue(QJsonValue::Null) << QByteArray("null");
    QTest::newRow("true") << QJsonValue(true) << QByteArray("true");
    QTest::newRow("undefined") << QJsonValue(QJsonValue::Undefined) << QByteArray("null");
    QTest::newRow("object") << QJsonValue(QJsonObject{{"a", QJsonArray{1, 2}}})
                            << QByteArray("{\"a\":[1,2]}");
    QTest::newRow("empty object") << QJsonValue(QJsonObject()) << QByteArray("{}");
    QTest::newRow("array") << QJsonValue(QJsonArray{1, "x"}) << QByteArray("[1,\"x\"]");
    QTest::newRow("empty array") << QJsonValue(QJsonArray()) << QByteArray("[]");
}

void tst_json_text::values_are_written_compact() {
    QFETCH(QJsonValue, value);
    QFETCH(QByteArray, text);
    QCOMPARE(base::json_to_text(value), text);
}

QTEST_GUILESS_MAIN(tst_json_text)
#include "tst_json_text.moc"
