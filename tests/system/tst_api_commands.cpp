#include <QJsonDocument>
#include <QTcpServer>
#include <QtTest>

#include "kit/password_of.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// torlanctl as an API user of a server that runs.
class tst_api_commands : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void get_shows_what_the_user_may_read();
    void get_as_json_is_a_line_for_each_element();
    void put_is_passed_on();
    void confirmed_value_is_there();
    void value_that_does_not_come_is_told_apart();
    void what_cannot_be_read_cannot_be_confirmed();
    void request_prints_the_answer();
    void refusals_end_with_status_1_data();
    void refusals_end_with_status_1();
    void wrong_calls_ask_nobody_data();
    void wrong_calls_ask_nobody();
    void wrong_password_ends_with_status_4();
    void silence_ends_with_status_5();
    void password_may_come_from_a_private_file_only();

 private:
    /// As @p _user, whose password comes from standard input.
    int as(const QString& _user, const QStringList& _arguments) {
        return host.control(_arguments + QStringList{"--user", _user},
                            password_of(_user).toUtf8() + '\n');
    }
    QString error() const { return host.error().trimmed(); }
    QJsonObject first_line() const {
        return QJsonDocument::fromJson(host.control_output().split('\n').first()).object();
    }

    host_process_t host;
};

void tst_api_commands::initTestCase() {
    // What a lamp takes ends at 100.
    QVERIFY2(host.import(with(small_home(), "items/i-dim/max", 100)), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_api_commands::cleanupTestCase() {
    QCOMPARE(host.stop(), 0);
}

void tst_api_commands::get_shows_what_the_user_may_read() {
    QCOMPARE(as("bob", {"get"}), 0);
    QCOMPARE(host.control_output(), QByteArray("e-lamp  Kitchen lamp\n  dim: 40\n  execute: 0\n"));
    QCOMPARE(as("alice", {"get", "e-night"}), 0);
    QCOMPARE(host.control_output(), QByteArray("e-night  Good night\n  execute: false\n"));
}

void tst_api_commands::get_as_json_is_a_line_for_each_element() {
    QCOMPARE(as("alice", {"get", "--json"}), 0);
    QCOMPARE(host.control_output().count('\n'), 3);
    QCOMPARE(first_line()["element"], "e-lamp");
    QCOMPARE(first_line()["functions"].toObject()["dim"], "40");
}

void tst_api_commands::put_is_passed_on() {
    QCOMPARE(as("alice", {"put", "e-lamp", "execute=1", "dim=41"}), 0);
    QCOMPARE(host.control_output(),
             QByteArray("e-lamp execute is to be 1\ne-lamp dim is to be 41\n"));
    QCOMPARE(as("alice", {"put", "e-lamp", "execute=1", "dim=41", "--confirm"}), 0);
    QCOMPARE(host.control_output(), QByteArray("e-lamp execute is 1\ne-lamp dim is 41\n"));
}

void tst_api_commands::confirmed_value_is_there() {
    QCOMPARE(as("alice", {"put", "e-lamp", "dim=42.5", "--confirm", "--json"}), 0);
    QCOMPARE(first_line()["value"], "42.5");
    QCOMPARE(first_line()["confirmed"], true);
    QCOMPARE(as("bob", {"get", "e-lamp"}), 0);
    QVERIFY(host.control_output().contains("  dim: 42.5\n"));
    QCOMPARE(as("alice", {"put", "e-night", "execute=1", "--confirm"}), 0);
    QCOMPARE(host.control_output(), QByteArray("e-night execute is true\n"));
}

void tst_api_commands::value_that_does_not_come_is_told_apart() {
    QCOMPARE(as("alice", {"put", "e-lamp", "dim=43", "--confirm"}), 0);
    QCOMPARE(as("alice", {"put", "e-lamp", "dim=101"}), 0);
    QCOMPARE(as("alice", {"put", "e-lamp", "dim=101", "--confirm", "--wait", "1"}), 6);
    QCOMPARE(error(),
             "torlanctl: e-lamp was written, but the value did not come: dim is \"43\", not "
             "\"101\".");
    QCOMPARE(host.control_output(), QByteArray());
}

void tst_api_commands::what_cannot_be_read_cannot_be_confirmed() {
    QCOMPARE(as("bob", {"put", "e-therm", "thermo/setpoint=22"}), 0);
    QCOMPARE(as("bob", {"put", "e-therm", "thermo/setpoint=22", "--confirm"}), 6);
    QCOMPARE(error(),
             "torlanctl: e-therm was written, but what comes of it is not to be read: 401 "
             "Unauthorized user: configure user API on App.");
}

void tst_api_commands::request_prints_the_answer() {
    QCOMPARE(as("alice", {"request", "get/elements/objects_list",
                          "{\"filters\":{\"types\":[17]},\"uuid\":\"mine\"}"}),
             0);
    QCOMPARE(first_line()["uuid"], "mine");
    QCOMPARE(first_line()["data"].toObject().keys(), QStringList{"e-therm"});
    QCOMPARE(as("alice", {"request", request_topic("alice", "get", "e-lamp")}), 0);
    QCOMPARE(first_line()["data"].toObject()["name"], "Kitchen lamp");
    QVERIFY(!first_line().contains("uuid"));
}

void tst_api_commands::refusals_end_with_status_1_data() {
    QTest::addColumn<QString>("user");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char* _name, const char* _user, const QStringList& _arguments,
                        const QString& _error) {
        QTest::newRow(_name) << QString(_user) << _arguments << _error;
    };
    row("element that is not there", "alice", {"get", "e-lmap"},
        "The API refuses: 404 Not found element e-lmap. Did you mean e-lamp?");
    row("element that is not this user's", "bob", {"get", "e-therm"},
        "The API refuses: 401 Unauthorized user: configure user API on App.");
    row("write without the right", "bob", {"put", "e-lamp", "execute=1"},
        "The API refuses to write e-lamp: 401 Configure user on API on App.");
    row("one of two functions", "alice", {"put", "e-lamp", "dim=40", "nothing=1"},
        "The API refuses to write e-lamp: nothing: 404.");
    row("word", "alice", {"put", "e-lamp", "dim=eco", "--confirm"},
        "The API refuses to write e-lamp: dim: 404.");
    row("no such request", "alice", {"request", "get/nothing"},
        "The API refuses: 405 Topic not valid.");
    row("topic of somebody else", "bob", {"request", request_topic("alice", "get")},
        "The broker does not let bob read local/api/v1/alice/me/status/get/elements/objects_list.");
}

void tst_api_commands::refusals_end_with_status_1() {
    QFETCH(QString, user);
    QFETCH(QStringList, arguments);
    QFETCH(QString, sentence);
    QCOMPARE(as(user, arguments), 1);
    QCOMPARE(error(), "torlanctl: " + sentence);
}

void tst_api_commands::wrong_calls_ask_nobody_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char* _name, const QStringList& _arguments, const QString& _error) {
        QTest::newRow(_name) << _arguments << _error;
    };
    row("nobody", {"get"}, "--user says who asks.");
    row("wildcard for a user", {"get", "--user", "+"},
        "The user name \"+\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.");
    row("wildcard for an element", {"get", "#", "--user", "alice"},
        "The element \"#\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.");
    row("no value", {"put", "e-lamp", "execute", "--user", "alice"},
        "\"execute\" is no FUNCTION=VALUE.");
    row("endless wait", {"get", "--user", "alice", "--wait", "0"},
        "--wait takes 1 to 3600, not 0.");
    row("no port", {"get", "--user", "alice", "--port", "65536"},
        "--port takes 1 to 65535, not 65536.");
    row("no object", {"request", "get/x", "[1]", "--user", "alice"}, "\"[1]\" is no JSON object.");
    row("wildcard for a topic", {"request", "get/#", "--user", "alice"},
        "\"get/#\" is no topic of a request, such as get/elements/objects_list.");
}

void tst_api_commands::wrong_calls_ask_nobody() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, sentence);
    QCOMPARE(host.control(arguments, "secret\n"), 2);
    QCOMPARE(error(), "torlanctl: " + sentence + " See torlanctl --help.");
}

void tst_api_commands::wrong_password_ends_with_status_4() {
    QCOMPARE(host.control({"get", "--user", "alice"}, "not-hers\n"), 4);
    QVERIFY2(error().startsWith("torlanctl: The broker at 127.0.0.1:"), qPrintable(error()));
    QVERIFY2(error().contains(" does not let alice in: "), qPrintable(error()));
    QVERIFY(!error().contains("not-hers"));
    QCOMPARE(host.control({"get", "--user", "nobody"}, "not-hers\n"), 4);
}

void tst_api_commands::silence_ends_with_status_5() {
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    const QString port = QString::number(silent.serverPort());
    QCOMPARE(as("alice", {"get", "--port", port, "--wait", "1"}), 5);
    QCOMPARE(error(),
             "torlanctl: Nobody lets alice in at 127.0.0.1:" + port + " within 1 s: no answer.");
    silent.close();
    QCOMPARE(as("alice", {"get", "--port", port, "--wait", "1"}), 5);
    const QTemporaryDir other;
    QCOMPARE(host.control({"get", "--user", "alice", "--data", other.path()}, "x\n"), 5);
    QCOMPARE(error(), "torlanctl: No server runs on " + other.path() +
                          ". Another one is named by --host and --port.");
}

void tst_api_commands::password_may_come_from_a_private_file_only() {
    const QString name = host.data() + "/alice.secret";
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(password_of("alice").toUtf8()) > 0);
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    const QStringList call{"get", "e-lamp", "--user", "alice", "--password-file", name};
    QCOMPARE(host.control(call), 0);
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::ReadOther));
    QCOMPARE(host.control(call), 1);
    QCOMPARE(error(), "torlanctl: " + name +
                          ": others can read it: a file with a password needs mode 0600.");
}

QTEST_GUILESS_MAIN(tst_api_commands)
#include "tst_api_commands.moc"
