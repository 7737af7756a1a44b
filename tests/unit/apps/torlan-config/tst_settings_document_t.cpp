#include "settings_document_t.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace torlan;

namespace {

settings_document_t document(const char* _text) {
    return settings_document_t(QJsonDocument::fromJson(_text).object());
}

QByteArray text(const settings_document_t& _document) {
    return QJsonDocument(_document.object()).toJson(QJsonDocument::Compact);
}

}  // namespace

class tst_settings_document_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void get_follows_the_keys_data();
    void get_follows_the_keys();
    void get_of_a_missing_value_is_nothing_data();
    void get_of_a_missing_value_is_nothing();
    void set_changes_one_value_data();
    void set_changes_one_value();
    void set_refuses_what_is_in_the_way_data();
    void set_refuses_what_is_in_the_way();
    void depth_counts_objects_and_arrays();
};

void tst_settings_document_t::get_follows_the_keys_data() {
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("root") << QStringList()
                          << QJsonValue(document(R"({"a":{"b":1,"n":null}})").object());
    QTest::newRow("object") << QStringList{"a"}
                            << QJsonValue(QJsonObject{{"b", 1}, {"n", QJsonValue()}});
    QTest::newRow("scalar") << QStringList{"a", "b"} << QJsonValue(1);
    QTest::newRow("null") << QStringList{"a", "n"} << QJsonValue(QJsonValue::Null);
}

void tst_settings_document_t::get_follows_the_keys() {
    QFETCH(QStringList, keys);
    QFETCH(QJsonValue, value);
    QCOMPARE(document(R"({"a":{"b":1,"n":null}})").get(keys), value);
}

void tst_settings_document_t::get_of_a_missing_value_is_nothing_data() {
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("key") << QStringList{"x"};
    QTest::newRow("key of a key") << QStringList{"a", "x"};
    QTest::newRow("below a missing one") << QStringList{"x", "b"};
    QTest::newRow("below a scalar") << QStringList{"a", "b", "c"};
    QTest::newRow("below null") << QStringList{"a", "n", "c"};
    QTest::newRow("into an array") << QStringList{"l", "0"};
    QTest::newRow("other case") << QStringList{"A"};
}

void tst_settings_document_t::get_of_a_missing_value_is_nothing() {
    QFETCH(QStringList, keys);
    QVERIFY(!document(R"({"a":{"b":1,"n":null},"l":[1]})").get(keys));
}

void tst_settings_document_t::set_changes_one_value_data() {
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QByteArray>("result");
    const QJsonValue null(QJsonValue::Null);
    QTest::newRow("new key") << QStringList{"x"} << QJsonValue(2)
                             << QByteArray(R"({"a":{"b":1},"n":null,"x":2})");
    QTest::newRow("replaced") << QStringList{"a", "b"} << QJsonValue("w")
                              << QByteArray(R"({"a":{"b":"w"},"n":null})");
    QTest::newRow("beside") << QStringList{"a", "c"} << null
                            << QByteArray(R"({"a":{"b":1,"c":null},"n":null})");
    QTest::newRow("missing objects are made")
        << QStringList{"p", "q", "r"} << QJsonValue(true)
        << QByteArray(R"({"a":{"b":1},"n":null,"p":{"q":{"r":true}}})");
    QTest::newRow("object by scalar")
        << QStringList{"a"} << QJsonValue(3) << QByteArray(R"({"a":3,"n":null})");
    QTest::newRow("null by array")
        << QStringList{"n"} << QJsonValue(QJsonArray{1}) << QByteArray(R"({"a":{"b":1},"n":[1]})");
    QTest::newRow("whole document")
        << QStringList() << QJsonValue(QJsonObject{{"z", 1}}) << QByteArray(R"({"z":1})");
}

void tst_settings_document_t::set_changes_one_value() {
    QFETCH(QStringList, keys);
    QFETCH(QJsonValue, value);
    QFETCH(QByteArray, result);
    settings_document_t changed = document(R"({"a":{"b":1},"n":null})");
    QVERIFY(changed.set(keys, value));
    QCOMPARE(text(changed), result);
    QCOMPARE(changed.get(keys), value);
}

void tst_settings_document_t::set_refuses_what_is_in_the_way_data() {
    QTest::addColumn<QStringList>("keys");
    QTest::newRow("scalar") << QStringList{"a", "b", "c"};
    QTest::newRow("scalar far up") << QStringList{"a", "b", "c", "d"};
    QTest::newRow("null") << QStringList{"n", "c"};
    QTest::newRow("array") << QStringList{"l", "0"};
    QTest::newRow("whole document by a scalar") << QStringList();
}

void tst_settings_document_t::set_refuses_what_is_in_the_way() {
    QFETCH(QStringList, keys);
    const QByteArray before = R"({"a":{"b":1},"l":[1],"n":null})";
    settings_document_t unchanged = document(before.constData());
    QVERIFY(!unchanged.set(keys, 5));
    QCOMPARE(text(unchanged), before);
}

void tst_settings_document_t::depth_counts_objects_and_arrays() {
    QCOMPARE(document("{}").depth(), 1);
    QCOMPARE(document(R"({"a":1})").depth(), 1);
    QCOMPARE(document(R"({"a":{},"b":1})").depth(), 2);
    QCOMPARE(document(R"({"a":[[{"b":[]}],2],"c":{}})").depth(), 5);
}

QTEST_GUILESS_MAIN(tst_settings_document_t)
#include "tst_settings_document_t.moc"
