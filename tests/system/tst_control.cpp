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

QTEST_GUILESS_MAIN(tst_control)
#include "tst_control.moc"
