#include <QTest>

#include "installation/json_text.h"

using database::installation::parse_json;

class tst_json_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void refused_text_is_told_with_line_and_column_data();
    void refused_text_is_told_with_line_and_column();
    void same_key_in_two_objects_is_fine();
    void quotes_and_brackets_inside_texts_are_no_structure();
};

void tst_json_text::refused_text_is_told_with_line_and_column_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    const QByteArray deep = QByteArray(2000, '[') + QByteArray(2000, ']');
    QTest::newRow("empty") << QByteArray() << "line 1, column 1: illegal value";
    QTest::newRow("missing colon")
        << QByteArray("{\n  \"a\" 1\n}") << "line 2, column 8: missing name separator";
    QTest::newRow("text after the end")
        << QByteArray("{}\n{}") << "line 2, column 1: garbage at the end of the document";
    QTest::newRow("array") << QByteArray("[]") << "must be a JSON object";
    QTest::newRow("twice") << QByteArray("{\"a\": 1,\n \"b\": 2, \"a\": 3}")
                           << "line 2, column 10: \"a\" stands twice in one object";
    QTest::newRow("twice, inside an array")
        << QByteArray("{\"x\": [{\"a\": 1, \"a\": 2}]}")
        << "line 1, column 17: \"a\" stands twice in one object";
    QTest::newRow("twice, written with an escape")
        << QByteArray("{\"a\": 1, \"\\u0061\": 2}")
        << "line 1, column 10: \"a\" stands twice in one object";
    QTest::newRow("columns are characters")
        << QByteArray("{\"ä\": 1, \"ä\": 2}")
        << "line 1, column 10: \"ä\" stands twice in one object";
    QTest::newRow("too deep") << "{\"a\": " + deep + "}"
                              << "line 1, column 1031: too deeply nested document";
}

void tst_json_text::refused_text_is_told_with_line_and_column() {
    QFETCH(QByteArray, text);
    QTEST(parse_json(text).error, "error");
}

void tst_json_text::same_key_in_two_objects_is_fine() {
    const auto json = parse_json(R"({"a": {"a": 1}, "b": {"a": [{"a": 2}, {"a": 3}]}})");
    QCOMPARE(json.error, QString());
    QCOMPARE(json.value.keys(), QStringList({"a", "b"}));
}

void tst_json_text::quotes_and_brackets_inside_texts_are_no_structure() {
    const auto json = parse_json(R"({"a": "}\",\"a\":[", "b\\": "{", "b": "\\"})");
    QCOMPARE(json.error, QString());
    QCOMPARE(json.value["a"].toString(), "}\",\"a\":[");
}

QTEST_GUILESS_MAIN(tst_json_text)
#include "tst_json_text.moc"
