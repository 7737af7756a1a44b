#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtTest>

#include "http/http_t.h"
#include "kit/raw_mqtt_t.h"
#include "kit/small_home.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"

using namespace support;

namespace {

const QByteArray wrong_password = "wr0ng-and-nobodys-business";
const QByteArray new_password = "n3w-and-nobodys-business";
constexpr const char* token = "t0ken-of-the-cloud";

}  // namespace

/// Who did what is found again: the real programs, read with torlanctl.
class tst_audit : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { host.reset(); }
    void a_write_and_who_did_it_are_found();
    void a_refused_write_and_read_are_found();
    void a_write_of_many_is_found_by_each_element();
    void a_foreign_subscription_is_found();
    void a_wrong_password_is_found_without_it();
    void a_sign_in_and_a_departure_are_found();
    void a_withdrawn_grant_is_found();
    void a_user_and_a_password_are_found();
    void a_changed_setting_is_found_without_its_value();
    void the_start_s_own_checks_are_nobody();
    void a_flood_of_refused_writes_leaves_another_s_write_and_few_lines();
    void nobody_else_reads_it_and_no_secret_is_in_it();
    void it_can_be_read_when_nothing_runs();

 private:
    /// What torlanctl shows, a line each.
    QList<QJsonObject> shown(const QStringList& _options);
    /// Waits until there is a line that says all of this.
    bool comes(const QStringList& _options, const QJsonObject& _expected);
    QJsonObject ask(kit::mqtt_client_t& _client, const QString& _topic, QJsonObject _payload) {
        return _client.request(_topic, std::move(_payload));
    }

    std::unique_ptr<host_process_t> host;
    kit::mqtt_client_t alice;
    kit::mqtt_client_t bob;
};

void tst_audit::initTestCase() {
    host = std::make_unique<host_process_t>();
    QVERIFY2(host->import(kit::small_home()), qPrintable(host->error()));
    const mode_t before = ::umask(0);
    const bool started = host->start();
    ::umask(before);
    QVERIFY2(started, qPrintable(host->error()));
    QVERIFY(join(alice, *host, "alice"));
    QVERIFY(join(bob, *host, "bob"));
}

QList<QJsonObject> tst_audit::shown(const QStringList& _options) {
    QList<QJsonObject> lines;
    if (host->control(QStringList{"audit", "--json"} + _options) == 0) {
        for (const QByteArray& line : host->control_output().split('\n')) {
            if (!line.isEmpty()) {
                lines.append(QJsonDocument::fromJson(line).object());
            }
        }
    }
    return lines;
}

bool tst_audit::comes(const QStringList& _options, const QJsonObject& _expected) {
    const auto fits = [&_expected](const QJsonObject& _line) {
        for (auto each = _expected.begin(); each != _expected.end(); ++each) {
            if (_line.value(each.key()) != each.value()) {
                return false;
            }
        }
        return true;
    };
    return kit::wait_until([&]() {
        const QList<QJsonObject> lines = shown(_options);
        return std::any_of(lines.begin(), lines.end(), fits);
    });
}

void tst_audit::a_write_and_who_did_it_are_found() {
    const QJsonObject answer =
        ask(alice, request_topic("alice", "set", "e-lamp"), write_payload("execute", "1"));
    QVERIFY(answer.contains("data"));
    QVERIFY(comes({"--user", "alice", "--element", "e-lamp", "--since", "10m"},
                  {{"user", "alice"},
                   {"operation", "write"},
                   {"element", "e-lamp"},
                   {"function", "execute"},
                   {"value", "1"},
                   {"result", "202"},
                   {"called", "me"},
                   {"uuid", answer["uuid"]}}));
    QCOMPARE(host->control({"audit", "--user", "alice", "--element", "e-lamp"}), 0);
    QVERIFY2(host->control_output().contains("alice  write e-lamp execute = \"1\": 202"),
             host->control_output());
    for (const QJsonObject& line : shown({"--user", "bob"})) {
        QCOMPARE(line["user"], QJsonValue("bob"));
    }
}

void tst_audit::a_refused_write_and_read_are_found() {
    ask(bob, request_topic("bob", "set", "e-lamp"), write_payload("execute", "0"));
    QVERIFY(comes(
        {"--user", "bob", "--element", "e-lamp"},
        {{"operation", "write"}, {"function", "execute"}, {"value", "0"}, {"result", "401"}}));
    ask(bob, request_topic("bob", "get", "e-night"), {});
    QVERIFY(comes({"--user", "bob", "--element", "e-night"},
                  {{"operation", "read"}, {"result", "401"}}));
    ask(bob, request_topic("bob", "get", "e-none"), {});
    QVERIFY(comes({"--user", "bob", "--element", "e-none"},
                  {{"operation", "read"}, {"result", "404"}}));
}

void tst_audit::a_write_of_many_is_found_by_each_element() {
    const auto of = [](const QJsonObject& _functions) {
        return QJsonObject{{"functions", _functions}};
    };
    ask(alice, request_topic("alice", "set"),
        {{"data", QJsonObject{{"e-lamp", of({{"dim", 55}})}, {"e-therm", of({{"id_win", 1}})}}}});
    QVERIFY(comes({"--element", "e-lamp"},
                  {{"user", "alice"}, {"function", "dim"}, {"value", "55"}, {"result", "202"}}));
    QVERIFY(comes({"--element", "e-therm"},
                  {{"user", "alice"}, {"function", "id_win"}, {"result", "401"}}));
}

void tst_audit::a_foreign_subscription_is_found() {
    kit::raw_mqtt_t client(kit::raw_mqtt_t::way_t::tcp, QString::number(host->port()));
    QCOMPARE(client.connect({.name = "bob", .password = "bob-password", .id = "bobs-spy"}), 0);
    QVERIFY(client.subscribe("local/api/v1/alice/#") >= 128);
    QVERIFY(comes({"--user", "bob"}, {{"operation", "subscribe"},
                                      {"result", "refused"},
                                      {"client", "bobs-spy"},
                                      {"detail", "local/api/v1/alice/#"}}));
}

void tst_audit::a_wrong_password_is_found_without_it() {
    kit::raw_mqtt_t client(kit::raw_mqtt_t::way_t::tcp, QString::number(host->port()));
    const int code =
        client.connect({.name = "alice", .password = wrong_password, .id = "stranger"});
    QVERIFY(code != 0);
    QVERIFY(comes({"--user", "alice"}, {{"operation", "sign-in"},
                                        {"result", "failed"},
                                        {"client", "stranger"},
                                        {"address", "127.0.0.1"}}));
}

void tst_audit::a_sign_in_and_a_departure_are_found() {
    {
        kit::raw_mqtt_t client(kit::raw_mqtt_t::way_t::tcp, QString::number(host->port()));
        QCOMPARE(client.connect({.name = "bob", .password = "bob-password", .id = "bobs-phone"}),
                 0);
    }
    QVERIFY(comes({"--user", "bob"}, {{"operation", "sign-in"},
                                      {"result", "ok"},
                                      {"client", "bobs-phone"},
                                      {"address", "127.0.0.1"}}));
    QVERIFY(comes({"--user", "bob"}, {{"operation", "departure"}, {"client", "bobs-phone"}}));
}

void tst_audit::a_withdrawn_grant_is_found() {
    QCOMPARE(host->control({"grant", "bob", "e-therm", "deny"}), 0);
    QVERIFY(comes(
        {"--user", "bob", "--element", "e-therm"},
        {{"operation", "grant"}, {"by", "database"}, {"value", "deny"}, {"detail", "was write"}}));
}

void tst_audit::a_user_and_a_password_are_found() {
    QCOMPARE(host->control({"user", "add", "erin"}, new_password), 0);
    QVERIFY(comes({"--user", "erin"}, {{"operation", "user"}, {"result", "added"}}));
    QCOMPARE(host->control({"user", "passwd", "erin"}, new_password + "2"), 0);
    QVERIFY(comes({"--user", "erin"}, {{"operation", "password"}, {"result", "changed"}}));
    QCOMPARE(host->control({"user", "remove", "erin"}), 0);
    QVERIFY(comes({"--user", "erin"}, {{"operation", "user"}, {"result", "removed"}}));
}

void tst_audit::a_changed_setting_is_found_without_its_value() {
    http_t http(QString("http://127.0.0.1:%1/").arg(host->config_port()), false, nullptr);
    QCOMPARE(http.put("static/cloud_api_token", QJsonValue(token)).getError(), 0);
    QVERIFY(comes(
        {}, {{"operation", "setting"}, {"detail", "/static/cloud_api_token"}, {"result", "200"}}));
}

void tst_audit::the_start_s_own_checks_are_nobody() {
    for (const QJsonObject& line : shown({})) {
        QVERIFY(!line["user"].toString().startsWith("check-"));
        QVERIFY(!line["client"].toString().startsWith("check-"));
    }
    QVERIFY(comes({}, {{"operation", "start"}}));
}

void tst_audit::a_flood_of_refused_writes_leaves_another_s_write_and_few_lines() {
    const qsizetype before = shown({}).size();
    constexpr int writes = 5'000;
    kit::raw_mqtt_t flood(kit::raw_mqtt_t::way_t::tcp, QString::number(host->port()));
    QCOMPARE(flood.connect({.name = "bob", .password = "bob-password", .id = "flood"}), 0);
    for (int i = 0; i < writes; ++i) {
        flood.publish(request_topic("bob", "set", QString("x-%1").arg(i)).toUtf8(),
                      R"({"data":{"functions":{"execute":"1"}}})", 0);
        if (i == writes / 2) {
            ask(alice, request_topic("alice", "set", "e-night"), write_payload("execute", true));
        }
    }
    QVERIFY(comes({"--user", "alice", "--element", "e-night"},
                  {{"operation", "write"}, {"result", "202"}}));
    // The flood's last one: what follows is answered behind it.
    ask(bob, request_topic("bob", "set", "e-night"), write_payload("execute", true));
    // Two minutes of different things at most, and what was counted in them.
    const qsizetype more = shown({}).size() - before;
    QVERIFY2(more < 500, QByteArray::number(more));
    QVERIFY(!shown({"--user", "bob", "--since", "10m"}).isEmpty());
}

void tst_audit::nobody_else_reads_it_and_no_secret_is_in_it() {
    QStringList files;
    for (const QString& folder : {host->data() + "/logs", host->data()}) {
        for (const QString& name : QDir(folder).entryList({"*audit*.log"}, QDir::Files)) {
            files.append(folder + '/' + name);
        }
    }
    QCOMPARE(files.size(), 2);
    for (const QString& path : files) {
        struct stat status = {};
        QCOMPARE(::stat(qPrintable(path), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0600));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        for (const QByteArray& secret :
             {QByteArray("alice-password"), QByteArray("bob-password"), wrong_password,
              new_password, QByteArray(token), QByteArray("$7$")}) {
            QVERIFY2(!text.contains(secret), secret);
        }
    }
}

void tst_audit::it_can_be_read_when_nothing_runs() {
    QCOMPARE(host->stop(), 0);
    QVERIFY(comes({}, {{"operation", "stop"}}));
    // What was counted and not yet told is there at the end.
    qint64 refused = 0;
    bool stopped_at_the_broker = false;
    for (const QJsonObject& line : shown({"--user", "bob"})) {
        const bool is_flood = line["result"] == QJsonValue("404") ||
                              line["result"] == QJsonValue("429") ||
                              line["operation"] == QJsonValue("lost");
        refused += is_flood ? line["count"].toInteger(1) : 0;
        stopped_at_the_broker = stopped_at_the_broker || line["result"] == QJsonValue("flooding");
    }
    // Above 1,000 a second the broker lets none through, and says so.
    QVERIFY2(refused >= (stopped_at_the_broker ? 1'000 : 5'000), QByteArray::number(refused));
}

QTEST_GUILESS_MAIN(tst_audit)
#include "tst_audit.moc"
