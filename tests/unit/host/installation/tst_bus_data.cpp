#include <QJsonDocument>
#include <QTest>

#include "installation/bus_data.h"
#include "installation/document_reader.h"
#include "installation/document_writer.h"

using namespace database::installation;

class tst_bus_data : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void item_says_what_it_has_to_do_with_the_bus();
    void what_is_left_out_data();
    void what_is_left_out();
    void scenario_is_a_scene();
    void what_is_wrong_is_named_with_its_place_data();
    void what_is_wrong_is_named_with_its_place();
    void document_is_refused_with_the_place();
    void document_keeps_it_data();
    void document_keeps_it();
};

namespace {

QJsonObject object(const QByteArray& _text) {
    return QJsonDocument::fromJson(_text).object();
}

QByteArray document(const QByteArray& _knx, const char* _section = "items") {
    const QByteArray entry =
        qstrcmp(_section, "items") == 0 ? R"("value": "0")" : R"("execution": false)";
    return R"({"topic": "t", ")" + QByteArray(_section) + R"(": {"i-1": {)" + entry +
           R"(, "knx": )" + _knx + "}}}";
}

}  // namespace

void tst_bus_data::item_says_what_it_has_to_do_with_the_bus() {
    const auto read = read_bus_data(
        object(R"({"dpt": "1.001", "write": "1/1/1", "status": ["1/1/2", "1/3"], "read": false,
                   "answer": true})"),
        bus_role_t::item);
    QCOMPARE(read.error, QString());
    QCOMPARE(read.data.dpt, "1.001");
    QCOMPARE(read.data.write, "1/1/1");
    QCOMPARE(read.data.status, QStringList({"1/1/2", "1/3"}));
    QVERIFY(!read.data.read);
    QVERIFY(read.data.answer);
}

void tst_bus_data::what_is_left_out_data() {
    QTest::addColumn<bool>("read");
    QTest::addColumn<QStringList>("heard");
    QTest::newRow(R"({"dpt": "9", "write": "1/1/1"})") << false << QStringList{"1/1/1"};
    QTest::newRow(R"({"dpt": "9", "write": "1/1/1", "status": ["1/1/2"]})")
        << true << QStringList{"1/1/2"};
    QTest::newRow(R"({"dpt": "9", "status": ["2563"]})") << true << QStringList{"2563"};
    QTest::newRow(R"({"dpt": "206.100", "write": "1/1/1", "read": true})")
        << true << QStringList{"1/1/1"};
}

void tst_bus_data::what_is_left_out() {
    const auto read = read_bus_data(object(QTest::currentDataTag()), bus_role_t::item);
    QCOMPARE(read.error, QString());
    QTEST(read.data.read, "read");
    QTEST(read.data.heard(), "heard");
    QVERIFY(!read.data.answer);
}

void tst_bus_data::scenario_is_a_scene() {
    const auto usual =
        read_bus_data(object(R"({"write": "0/7/1", "scene": 64})"), bus_role_t::scenario);
    QCOMPARE(usual.error, QString());
    QCOMPARE(usual.data.dpt, "17.001");
    QCOMPARE(usual.data.scene, 64);
    const auto control = read_bus_data(object(R"({"dpt": "18.001", "write": "0/7/1", "scene": 1})"),
                                       bus_role_t::scenario);
    QCOMPARE(control.error, QString());
    QCOMPARE(control.data.dpt, "18.001");
}

void tst_bus_data::what_is_wrong_is_named_with_its_place_data() {
    QTest::addColumn<bus_role_t>("role");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* _json, bus_role_t _role, const char* _place,
                        const char* _error) {
        QTest::newRow(_json) << _role << QString::fromLatin1(_place) << QString::fromLatin1(_error);
    };
    constexpr auto item = bus_role_t::item;
    constexpr auto scenario = bus_role_t::scenario;
    const char* const type = "must be a data point type such as \"9.001\" or \"9\"";
    const char* const address = "must be a group address such as \"1/2/3\", \"1/515\" or \"2563\"";
    const char* const scene = "must be a whole number from 1 to 64";
    const char* const addresses = "must be a list of 1 to 64 group addresses";
    row(R"({"write": "1/1/1"})", item, "dpt", type);
    row(R"({"dpt": "light", "write": "1/1/1"})", item, "dpt", type);
    row(R"({"dpt": 9, "write": "1/1/1"})", item, "dpt", type);
    row(R"({"dpt": "9"})", item, "write", "is missing");
    row(R"({"dpt": "9", "write": "0/0/0"})", item, "write", address);
    row(R"({"dpt": "9", "write": "32/0/1"})", item, "write", address);
    row(R"({"dpt": "9", "write": 5})", item, "write", address);
    row(R"({"dpt": "9", "status": []})", item, "status", addresses);
    row(R"({"dpt": "9", "status": "1/1/1"})", item, "status", addresses);
    row(R"({"dpt": "9", "status": ["1/1/1", "1/8/1"]})", item, "status/1", address);
    row(R"({"dpt": "9", "write": "1/1/1", "read": 1})", item, "read", "must be true or false");
    row(R"({"dpt": "9", "write": "1/1/1", "answer": "yes"})", item, "answer",
        "must be true or false");
    row(R"({"dpt": "9", "write": "1/1/1", "scene": 1})", item, "scene", "is not known");
    row(R"({"scene": 1})", scenario, "write", "is missing");
    row(R"({"write": "0/7/1"})", scenario, "scene", scene);
    row(R"({"write": "0/7/1", "scene": 0})", scenario, "scene", scene);
    row(R"({"write": "0/7/1", "scene": 65})", scenario, "scene", scene);
    row(R"({"write": "0/7/1", "scene": 1.5})", scenario, "scene", scene);
    row(R"({"dpt": "9.001", "write": "0/7/1", "scene": 1})", scenario, "dpt",
        "must be \"17.001\" or \"18.001\"");
    row(R"({"write": "0/7/1", "scene": 1, "status": ["1/1/1"]})", scenario, "status",
        "is not known");
}

void tst_bus_data::what_is_wrong_is_named_with_its_place() {
    QFETCH(bus_role_t, role);
    const auto read = read_bus_data(object(QTest::currentDataTag()), role);
    QTEST(read.place.join('/'), "place");
    QTEST(read.error, "error");
}

void tst_bus_data::document_is_refused_with_the_place() {
    QCOMPARE(read_document(document(R"({"dpt": "9", "write": "1/9/1"})"), "home.json").error,
             "home.json: items/i-1/knx/write: must be a group address such as \"1/2/3\", "
             "\"1/515\" or \"2563\"");
    QCOMPARE(read_document(document("5"), "home.json").error,
             "home.json: items/i-1/knx: must be an object");
    QCOMPARE(read_document(document(R"({"write": "1/1/1", "scene": 65})", "scenarios"), "home.json")
                 .error,
             "home.json: scenarios/i-1/knx/scene: must be a whole number from 1 to 64");
}

void tst_bus_data::document_keeps_it_data() {
    QTest::addColumn<QByteArray>("section");
    QTest::newRow(R"({"dpt":"1.001","status":["1/1/2"],"write":"1/1/1"})") << QByteArray("items");
    QTest::newRow(R"({"answer":true,"dpt":"9","read":true,"write":"2563"})") << QByteArray("items");
    QTest::newRow(R"({"dpt":"9","read":false,"status":["1/1/2"]})") << QByteArray("items");
    QTest::newRow(R"({"scene":3,"write":"0/7/1"})") << QByteArray("scenarios");
    QTest::newRow(R"({"dpt":"18.001","scene":3,"write":"0/7/1"})") << QByteArray("scenarios");
}

void tst_bus_data::document_keeps_it() {
    QFETCH(QByteArray, section);
    const auto read = read_document(document(QTest::currentDataTag(), section), "home.json");
    QCOMPARE(read.error, QString());
    const QJsonObject written = object(write_document(read.value, passwords_t::left_out));
    QCOMPARE(QJsonDocument(written[QString::fromLatin1(section)]["i-1"]["knx"].toObject())
                 .toJson(QJsonDocument::Compact),
             QByteArray(QTest::currentDataTag()));
}

QTEST_GUILESS_MAIN(tst_bus_data)
#include "tst_bus_data.moc"
