#include <QTest>

#include "accounts/broker_hash.h"
#include "installation/document_reader.h"

using namespace database::installation;

namespace {

QString error_of(const QByteArray& _document) {
    const auto result = read_document(_document, "home.json");
    return result.error;
}

}  // namespace

class tst_document_reader : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void whole_document_is_read();
    void sections_and_optional_keys_may_be_left_out();
    void wrong_shape_is_told_with_its_place_data();
    void wrong_shape_is_told_with_its_place();
    void broken_text_is_told_with_its_line();
    void refused_document_never_shows_a_password();
    void huge_names_are_refused_and_shown_short();
    void who_has_the_password_already_keeps_its_hash_data();
    void who_has_the_password_already_keeps_its_hash();
};

void tst_document_reader::whole_document_is_read() {
    const auto result = read_document(R"({
        "topic": "home/1",
        "items": {"i-a": {"value": "21.5", "writable": false, "min": 5, "max": 35.5, "step": 0.5},
                  "i-b": {}},
        "scenarios": {"s-a": {"execution": true}, "s-b": {}},
        "thermostats": {"t-a": {"ids": {"setpoint": "i-a"}, "id_actual": "i-b",
                                "id_windows_contact": "i-a"}, "t-b": {}},
        "elements": {
            "e-a": {"name": "Lampe Küche", "type": 1, "functions": {"execute": "i-a", "x": null}},
            "e-b": {"name": "Night", "type": 8, "flags": -2147483648, "scenario": "s-a"},
            "e-c": {"name": "Living", "type": 17, "flags": 2147483647, "thermostat": "t-a"}},
        "users": {"u-a": {"username": "alice", "password": "secret"},
                  "u-b": {"username": "bob", "password_hash":
                      "$7$101$AAAAAAAAAAAAAAAA$AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=="}},
        "permissions": {"u-a": {"e-a": "readwrite", "e-b": "read", "e-c": "write"},
                        "u-b": {"e-a": "deny"}}})",
                                      "home.json");
    QCOMPARE(result.error, QString());
    const installation_t& whole = result.value;
    QCOMPARE(whole.topic, "home/1");
    QCOMPARE(whole.items,
             (QMap<QString, item_t>{{"i-a", {"21.5", {false, 5, 35.5, 0.5}}}, {"i-b", {""}}}));
    QVERIFY(!whole.items["i-b"].value.isNull());
    QCOMPARE(whole.scenarios, (QMap<QString, bool>{{"s-a", true}, {"s-b", false}}));
    QVERIFY((whole.thermostats["t-a"] == thermostat_t{{{"setpoint", "i-a"}}, "i-b", "i-a"}));
    QVERIFY(whole.thermostats["t-b"] == thermostat_t{});
    QVERIFY((whole.elements["e-a"] ==
             element_t{"Lampe Küche", 1, 0, {{"execute", "i-a"}, {"x", QString()}}, {}, {}}));
    QVERIFY(whole.elements["e-a"].functions["x"].isNull());
    QVERIFY((whole.elements["e-b"] == element_t{"Night", 8, INT_MIN, {}, "s-a", {}}));
    QVERIFY((whole.elements["e-c"] == element_t{"Living", 17, INT_MAX, {}, {}, "t-a"}));
    QCOMPARE(whole.users["u-a"].username, "alice");
    QVERIFY(accounts::verify_password("secret", whole.users["u-a"].password_hash));
    QVERIFY(whole.users["u-b"].password_hash.startsWith("$7$101$AAAA"));
    QCOMPARE(whole.permissions.keys(), QStringList("u-a"));
    QCOMPARE(whole.permissions["u-a"], (QMap<QString, int>{{"e-a", 3}, {"e-b", 1}, {"e-c", 2}}));
}

void tst_document_reader::sections_and_optional_keys_may_be_left_out() {
    const auto result = read_document(R"({"topic": "home"})", "home.json");
    QCOMPARE(result.error, QString());
    installation_t expected;
    expected.topic = "home";
    QVERIFY(result.value == expected);
}

void tst_document_reader::wrong_shape_is_told_with_its_place_data() {
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* _name, const QByteArray& _rest, const QString& _error) {
        QTest::newRow(_name) << _rest << _error;
    };
    const QString integer = "must be a whole number from -2147483648 to 2147483647";
    row("unknown section", R"("element": {})", R"(there is no such key as "element")");
    row("section", R"("items": [])", "items: must be an object");
    row("item", R"("items": {"i": "0"})", "items/i: must be an object");
    row("value", R"("items": {"i": {"value": 0}})", "items/i/value: must be text");
    row("item key", R"("items": {"i": {"v": ""}})", R"(items/i: there is no such key as "v")");
    row("writable", R"("items": {"i": {"writable": 0}})",
        "items/i/writable: must be true or false");
    row("min", R"("items": {"i": {"min": "0"}})", "items/i/min: must be a number");
    row("max", R"("items": {"i": {"max": null}})", "items/i/max: must be a number");
    row("step", R"("items": {"i": {"step": 0}})", "items/i/step: must be a number above 0");
    row("step", R"("items": {"i": {"step": true}})", "items/i/step: must be a number above 0");
    row("execution", R"("scenarios": {"s": {"execution": "true"}})",
        "scenarios/s/execution: must be true or false");
    row("ids", R"("thermostats": {"t": {"ids": ["a"]}})", "thermostats/t/ids: must be an object");
    row("id", R"("thermostats": {"t": {"ids": {"mode": 1}}})",
        "thermostats/t/ids/mode: must be text or null");
    row("id_actual", R"("thermostats": {"t": {"id_actual": 1}})",
        "thermostats/t/id_actual: must be text");
    row("no name", R"("elements": {"e": {"type": 1}})", R"(elements/e: "name" is missing)");
    row("no type", R"("elements": {"e": {"name": "a"}})", R"(elements/e: "type" is missing)");
    row("name", R"("elements": {"e": {"name": 1, "type": 1}})", "elements/e/name: must be text");
    row("type", R"("elements": {"e": {"name": "a", "type": "1"}})", "elements/e/type: " + integer);
    row("type 1.5", R"("elements": {"e": {"name": "a", "type": 1.5}})",
        "elements/e/type: " + integer);
    row("type 1e300", R"("elements": {"e": {"name": "a", "type": 1e300}})",
        "elements/e/type: " + integer);
    row("flags", R"("elements": {"e": {"name": "a", "type": 1, "flags": 2147483648}})",
        "elements/e/flags: " + integer);
    row("flags", R"("elements": {"e": {"name": "a", "type": 1, "flags": -2147483649}})",
        "elements/e/flags: " + integer);
    row("functions", R"("elements": {"e": {"name": "a", "type": 1, "functions": null}})",
        "elements/e/functions: must be an object");
    row("function", R"("elements": {"e": {"name": "a", "type": 1, "functions": {"x": false}}})",
        "elements/e/functions/x: must be text or null");
    row("username", R"("users": {"u": {"password": "x"}})", R"(users/u: "username" is missing)");
    row("password", R"("users": {"u": {"username": "a", "password": 1}})",
        "users/u/password: must be text");
    row("grants", R"("permissions": {"u": "read"})", "permissions/u: must be an object");
    row("grant", R"("permissions": {"u": {"e": "all"}})",
        R"(permissions/u/e: must be "read", "write", "readwrite" or "deny")");
    row("grant null", R"("permissions": {"u": {"e": null}})",
        R"(permissions/u/e: must be "read", "write", "readwrite" or "deny")");
    row("three problems", R"("items": {"a": 1, "b": {"value": 1}, "c": {}, "d": []})",
        "items/a: must be an object (and 2 more)");
}

void tst_document_reader::wrong_shape_is_told_with_its_place() {
    QFETCH(QByteArray, rest);
    QFETCH(QString, error);
    QCOMPARE(error_of("{\"topic\": \"home\", " + rest + "}"), "home.json: " + error);
}

void tst_document_reader::broken_text_is_told_with_its_line() {
    QCOMPARE(error_of("{\n\"topic\" \"home\"}"),
             "home.json: line 2, column 10: missing name separator");
    QCOMPARE(error_of("[]"), "home.json: must be a JSON object");
    QCOMPARE(error_of("{}"), "home.json: \"topic\" is missing");
    QCOMPARE(error_of("{\"topic\": 1}"), "home.json: topic: must be text");
}

void tst_document_reader::refused_document_never_shows_a_password() {
    const QList<QByteArray> passwords{"\"hushhush\\n\"", "[\"hushhush\"]",
                                      '"' + QByteArray("hushhush").repeated(40) + '"'};
    for (const QByteArray& secret : passwords) {
        const QString error = error_of(
            R"({"topic": "home", "users": {"u": {"username": "a", "password": )" + secret + "}}}");
        QVERIFY2(error.startsWith("home.json: users/u/password: must be"), qPrintable(error));
        QVERIFY2(!error.contains("hush"), qPrintable(error));
    }
}

void tst_document_reader::huge_names_are_refused_and_shown_short() {
    const QByteArray huge(1 << 20, 'x');
    const QString shown = QString(80, 'x') + "…";
    QCOMPARE(error_of("{\"topic\": \"home\", \"items\": {\"" + huge + "\": {}}}"),
             "home.json: items/" + shown +
                 ": the identifier must be 1 to 64 of the characters 0-9 a-z A-Z . _ -");
    QCOMPARE(error_of("{\"topic\": \"home\", \"" + huge + "\": {}}"),
             "home.json: there is no such key as \"" + shown + "\"");
    QVERIFY(error_of("{\"topic\": \"" + huge + "\"}").startsWith("home.json: topic: must be"));
}

void tst_document_reader::who_has_the_password_already_keeps_its_hash_data() {
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("username");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("keeps");
    QTest::newRow("same") << "u"
                          << "a"
                          << "secret" << true;
    QTest::newRow("other password") << "u"
                                    << "a"
                                    << "other" << false;
    QTest::newRow("other name") << "u"
                                << "b"
                                << "secret" << false;
    QTest::newRow("other user") << "v"
                                << "a"
                                << "secret" << false;
}

void tst_document_reader::who_has_the_password_already_keeps_its_hash() {
    QFETCH(QString, id);
    QFETCH(QString, username);
    QFETCH(QString, password);
    const QString hash = accounts::make_password_hash("secret", 10);
    const QByteArray document =
        R"({"topic": "x", "users": {"%1": {"username": "%2", "password": "%3"}}})";
    const auto read =
        read_document(QString::fromUtf8(document).arg(id, username, password).toUtf8(), "home.json",
                      {{"u", {"a", hash}}});
    QCOMPARE(read.error, QString());
    const QString made = read.value.users[id].password_hash;
    QTEST(made == hash, "keeps");
    QVERIFY(accounts::verify_password(password, made));
}

QTEST_GUILESS_MAIN(tst_document_reader)
#include "tst_document_reader.moc"
