#include <QJsonArray>
#include <QTest>

#include "endpoint/json_payload.h"

namespace json_payload = comunication::json_payload;

class tst_json_payload : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void decode_takes_objects_only_data();
    void decode_takes_objects_only();
    void decode_refuses_2000_levels();
    void decode_takes_a_megabyte();
};

void tst_json_payload::decode_takes_objects_only_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QJsonObject>("object");
    QTest::newRow("empty") << QByteArray() << true << QJsonObject();
    QTest::newRow("object") << QByteArray("{\"a\":[1]}") << true
                            << QJsonObject{{"a", QJsonArray{1}}};
    QTest::newRow("blanks around") << QByteArray(" {}\n") << true << QJsonObject();
    for (const char* const text : {"[]", "1", "null", "\"a\"", "{", "{\"a\":}", "{} x", " ",
                                   "{'a':1}", "\xff\xfe", "{\"a\":\"\xff\"}"}) {
        QTest::newRow(QByteArray(text).toPercentEncoding().constData())
            << QByteArray(text) << false << QJsonObject();
    }
    QTest::newRow("zeros") << QByteArray(16, '\0') << false << QJsonObject();
}

void tst_json_payload::decode_takes_objects_only() {
    QFETCH(QByteArray, bytes);
    QFETCH(bool, accepted);
    QFETCH(QJsonObject, object);
    const auto decoded = json_payload::decode(bytes);
    QCOMPARE(decoded.has_value(), accepted);
    QCOMPARE(decoded.value_or(QJsonObject()), object);
}

void tst_json_payload::decode_refuses_2000_levels() {
    const QByteArray text =
        QByteArray("{\"a\":").repeated(2000) + "1" + QByteArray("}").repeated(2000);
    QVERIFY(!json_payload::decode(text));
}

void tst_json_payload::decode_takes_a_megabyte() {
    const QByteArray text = "{\"a\":\"" + QByteArray(1 << 20, 'x') + "\"}";
    QCOMPARE(json_payload::decode(text)->value("a").toString().size(), 1 << 20);
}

QTEST_GUILESS_MAIN(tst_json_payload)
#include "tst_json_payload.moc"
