#include <QTest>

#include "installation/document_reader.h"

using namespace database::installation;

namespace {

const QString alphabet = "must be 1 to 64 of the characters 0-9 a-z A-Z . _ -";

void row(const char* _name, const QByteArray& _document, const QString& _error) {
    QTest::newRow(_name) << _document << _error;
}

}  // namespace

/// What installation_rules.h and the secrets of users refuse, with the sentences people read.
class tst_document_rules : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void refusals_data();
    void refusals();

 private:
    void names();
    void references();
    void users();
};

void tst_document_rules::names() {
    row("no topic", R"({"topic": ""})", "");
    row("topic", R"({"topic": "api/x"})", R"(topic: must not begin with the level "api")");
    row("item", R"({"topic": "x", "items": {"a b": {}}})", "items/a b: the identifier " + alphabet);
    row("scenario", R"({"topic": "x", "scenarios": {"": {}}})",
        "scenarios/: the identifier " + alphabet);
    row("thermostat", R"({"topic": "x", "thermostats": {"a/b": {}}})",
        "thermostats/a/b: the identifier " + alphabet);
    row("element", R"({"topic": "x", "elements": {"a-request": {"name": "", "type": 1}}})",
        R"(elements/a-request: the identifier must not contain "request")");
    row("user", R"({"topic": "x", "users": {"#": {"username": "a", "password": "x"}}})",
        "users/#: the identifier " + alphabet);
    row("element name", R"({"topic": "x", "elements": {"e": {"name": "a\tb", "type": 1}}})",
        "elements/e/name: must be text without control characters");
    row("function",
        R"({"topic": "x", "elements": {"e": {"name": "", "type": 1, "functions": {"": null}}}})",
        "elements/e/functions/: a name must not be empty");
    row("function text",
        R"({"topic": "x", "elements": {"e": {"name": "", "type": 1, "functions": {"\n": null}}}})",
        "elements/e/functions/?: must be text without control characters");
    row("thermostat key",
        R"({"topic": "x", "items": {"i": {}}, "thermostats": {"t": {"ids": {"": "i"}}}})",
        "thermostats/t/ids/: a name must not be empty");
    row("value", R"({"topic": "x", "items": {"i": {"value": "\u0000"}}})",
        "items/i/value: must be text without NUL characters");
    row("range", R"({"topic": "x", "items": {"i": {"min": 1, "max": 0.5}}})",
        "items/i: min must not be above max");
    row("range of one", R"({"topic": "x", "items": {"i": {"min": 1, "max": 1}}})", "");
}

void tst_document_rules::references() {
    const QByteArray element = R"({"topic": "x", "elements": {"e": {"name": "", )";
    row("function's item", element + R"("type": 1, "functions": {"execute": "i-x"}}}})",
        R"(elements/e/functions/execute: there is no item "i-x")");
    row("empty function", element + R"("type": 1, "functions": {"execute": ""}}}})",
        R"(elements/e/functions/execute: there is no item "")");
    row("thermostat's item", R"({"topic": "x", "thermostats": {"t": {"ids": {"mode": "i-x"}}}})",
        R"(thermostats/t/ids/mode: there is no item "i-x")");
    row("actual", R"({"topic": "x", "thermostats": {"t": {"id_actual": "i-x"}}})",
        R"(thermostats/t/id_actual: there is no item "i-x")");
    row("window", R"({"topic": "x", "thermostats": {"t": {"id_windows_contact": "i-x"}}})",
        R"(thermostats/t/id_windows_contact: there is no item "i-x")");
    row("scenario", element + R"("type": 8, "scenario": "s-x"}}})",
        R"(elements/e/scenario: there is no scenario "s-x")");
    row("no scenario", element + R"("type": 8}}})",
        R"(elements/e: an element of this type needs a "scenario")");
    row("thermostat", element + R"("type": 17, "thermostat": "t-x"}}})",
        R"(elements/e/thermostat: there is no thermostat "t-x")");
    row("no thermostat", element + R"("type": 17}}})",
        R"(elements/e: an element of this type needs a "thermostat")");
    row("empty scenario", element + R"("type": 8, "scenario": ""}}})", "");
    row("empty thermostat", element + R"("type": 17, "thermostat": ""}}})", "");
    row("granted user", R"({"topic": "x", "permissions": {"u-x": {}}})",
        R"(permissions/u-x: there is no user "u-x")");
    row("granted element",
        R"({"topic": "x", "users": {"u": {"username": "a", "password": "x"}},
            "permissions": {"u": {"e-x": "deny"}}})",
        R"(permissions/u/e-x: there is no element "e-x")");
    row("several", R"({"topic": "x", "thermostats": {"t": {"id_actual": "i-x"}},
                       "permissions": {"u-x": {}}})",
        R"(thermostats/t/id_actual: there is no item "i-x" (and 1 more))");
}

void tst_document_rules::users() {
    const QByteArray user = R"({"topic": "x", "users": {"u": {"username": )";
    row("user name", user + R"("a+b", "password": "x"}}})", "users/u/username: " + alphabet);
    row("reserved user name", user + R"("requester", "password": "x"}}})",
        R"(users/u/username: must not contain "request")");
    row("same name", user + R"("a", "password": "x"}, "v": {"username": "a", "password": "x"}}})",
        R"(users/v/username: "a" is the name of user "u" already)");
    row("both", user + R"("a", "password": "x", "password_hash": "x"}}})",
        R"(users/u: takes either "password" or "password_hash")");
    row("hash", user + R"("a", "password_hash": "x"}}})",
        "users/u/password_hash: must be $7$iterations$salt$hash");
    row("empty password", user + R"("a", "password": ""}}})",
        "users/u/password: must not be empty");
}

void tst_document_rules::refusals_data() {
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("error");
    names();
    references();
    users();
}

void tst_document_rules::refusals() {
    QFETCH(QByteArray, document);
    QFETCH(QString, error);
    QCOMPARE(read_document(document, "home.json").error,
             error.isEmpty() ? error : "home.json: " + error);
}

QTEST_GUILESS_MAIN(tst_document_rules)
#include "tst_document_rules.moc"
