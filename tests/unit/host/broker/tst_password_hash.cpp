#include <QTest>

#include "unit/host/broker/mqtt_user_t.h"
#include "unit/host/broker/real_broker_t.h"

class tst_password_hash : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void hash_has_the_brokers_form();
    void every_hash_has_its_own_salt();
    void broker_accepts_the_password_only_data();
    void broker_accepts_the_password_only();
    void random_passwords_differ();
};

void tst_password_hash::hash_has_the_brokers_form() {
    const QStringList parts = broker::hash_password("x", 101).split('$');
    QCOMPARE(parts.size(), 5);
    QCOMPARE(parts.mid(0, 3), QStringList({"", "7", "101"}));
    QCOMPARE(QByteArray::fromBase64(parts[3].toLatin1()).size(), 12);
    QCOMPARE(QByteArray::fromBase64(parts[4].toLatin1()).size(), 64);
}

void tst_password_hash::every_hash_has_its_own_salt() {
    QVERIFY(broker::hash_password("x", 1) != broker::hash_password("x", 1));
}

void tst_password_hash::broker_accepts_the_password_only_data() {
    QTest::addColumn<QString>("password");
    QTest::newRow("plain") << "secret";
    QTest::newRow("odd") << QString::fromUtf8("ä €:$7$ \"'\\");
    QTest::newRow("long") << QString(200, 'x');
}

void tst_password_hash::broker_accepts_the_password_only() {
    QFETCH(QString, password);
    real_broker_t broker;
    QVERIFY(broker.process.start({real_broker_t::account("alice", password)}).is_ok());
    QVERIFY(broker.process.wait_until_listening().is_ok());
    mqtt_user_t alice;
    QVERIFY(alice.enter(broker.settings.port, "alice", password));
    mqtt_user_t wrong;
    QVERIFY(!wrong.enter(broker.settings.port, "alice", password + "x"));
    QVERIFY(wrong.refused);
}

void tst_password_hash::random_passwords_differ() {
    QCOMPARE(broker::random_password().size(), 32);
    QVERIFY(broker::random_password() != broker::random_password());
}

QTEST_GUILESS_MAIN(tst_password_hash)
#include "tst_password_hash.moc"
