#include <QJsonDocument>
#include <QtTest>

#include "kit/password_of.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// What torlanctl changes under a server that runs.
class tst_control : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void renamed_user_signs_in_by_the_new_name_only();
    void grant_on_all_elements_is_in_effect();
    void new_element_is_served_and_a_removed_one_is_not();
    void limits_hold_at_once();
    void backup_of_a_running_server_is_restored();

 private:
    bool can_sign_in(const QString& _name, const QString& _password) const {
        mqtt_client_t client;
        return client.sign_in(host.port(), _name, _password) == 0;
    }
    QString value_of(mqtt_client_t& _client, const QString& _user, const QString& _element,
                     const QString& _function) const {
        return value_in(_client.request(request_topic(_user, "get", _element)), _function);
    }

    host_process_t host;
};

void tst_control::initTestCase() {
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_control::cleanupTestCase() {
    QCOMPARE(host.stop(), 0);
}

void tst_control::renamed_user_signs_in_by_the_new_name_only() {
    QCOMPARE(host.control({"user", "rename", "bob", "carol"}), 0);
    QVERIFY(can_sign_in("carol", password_of("bob")));
    QVERIFY(!can_sign_in("bob", password_of("bob")));
    QCOMPARE(host.control({"user", "rename", "carol", "bob"}), 0);
    QVERIFY(can_sign_in("bob", password_of("bob")));
}

void tst_control::grant_on_all_elements_is_in_effect() {
    mqtt_client_t client;
    QVERIFY(join(client, host, "bob"));
    QCOMPARE(value_of(client, "bob", "e-therm", "thermo/setpoint"), QString());
    QCOMPARE(host.control({"grant", "bob", "--all", "read"}), 0);
    QCOMPARE(value_of(client, "bob", "e-therm", "thermo/setpoint"), "20.5");
    QCOMPARE(host.control({"revoke", "bob", "--type", "17"}), 0);
    QCOMPARE(value_of(client, "bob", "e-therm", "thermo/setpoint"), QString());
    QCOMPARE(value_of(client, "bob", "e-lamp", "execute"), "0");
}

void tst_control::new_element_is_served_and_a_removed_one_is_not() {
    QCOMPARE(host.control({"item", "add", "i-new", "--value", "7"}), 0);
    QCOMPARE(host.control({"element", "add", "e-new", "--type", "1", "execute=i-new"}), 0);
    QCOMPARE(host.control({"grant", "alice", "e-new", "readwrite"}), 0);
    mqtt_client_t client;
    QVERIFY(join(client, host, "alice"));
    QCOMPARE(value_of(client, "alice", "e-new", "execute"), "7");
    QCOMPARE(host.control({"item", "rename", "i-new", "i-other"}), 0);
    QCOMPARE(host.control({"element", "rename", "e-new", "e-other"}), 0);
    QCOMPARE(value_of(client, "alice", "e-new", "execute"), QString());
    QCOMPARE(value_of(client, "alice", "e-other", "execute"), "7");
    QCOMPARE(host.control({"item", "remove", "i-other"}), 1);
    QCOMPARE(host.control({"element", "remove", "e-other"}), 0);
    QCOMPARE(host.control({"item", "remove", "i-other"}), 0);
    QCOMPARE(value_of(client, "alice", "e-other", "execute"), QString());
}

void tst_control::limits_hold_at_once() {
    mqtt_client_t client;
    QVERIFY(join(client, host, "alice"));
    const auto write = [&](const char* _value) {
        client.request(request_topic("alice", "set", "e-lamp"),
                       {{"data", QJsonObject{{"functions", QJsonObject{{"dim", _value}}}}}});
    };
    QCOMPARE(host.control({"item", "set", "i-dim", "--max", "50"}), 0);
    write("60");
    write("45");
    QTRY_COMPARE(value_of(client, "alice", "e-lamp", "dim"), "45");
    QCOMPARE(host.control({"item", "set", "i-dim", "--max", "none"}), 0);
    write("60");
    QTRY_COMPARE(value_of(client, "alice", "e-lamp", "dim"), "60");
}

void tst_control::backup_of_a_running_server_is_restored() {
    const QString backup = host.data() + "/home.backup";
    const auto settings = [this]() {
        QFile file(host.settings_file());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray before = settings();
    QCOMPARE(host.control({"backup", backup}), 0);
    QCOMPARE(host.control({"user", "remove", "bob"}), 0);
    QCOMPARE(host.control({"restore", backup}), 1);
    QVERIFY2(host.error().contains(" is in use by process "), qPrintable(host.error()));
    QCOMPARE(host.stop(), 0);
    QCOMPARE(host.control({"restore", backup}), 1);  // the configuration server has its file
    host.stop_config();
    QFile file(host.settings_file());
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("{}") == 2);
    file.close();
    QCOMPARE(host.control({"restore", backup}), 0);
    QCOMPARE(settings(), before);
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(can_sign_in("bob", password_of("bob")));
}

QTEST_GUILESS_MAIN(tst_control)
#include "tst_control.moc"
