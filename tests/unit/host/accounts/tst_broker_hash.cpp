#include <QFile>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include "accounts/broker_hash.h"
#include "kit/free_port.h"

using namespace accounts;

class tst_broker_hash : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void own_hash_verifies_and_has_the_brokers_form();
    void two_hashes_of_one_password_differ();
    void hash_of_the_brokers_tool_verifies();
    void broker_accepts_own_hash_and_refuses_another_password_data();
    void broker_accepts_own_hash_and_refuses_another_password();
    void malformed_hash_is_told_apart_and_verifies_nothing_data();
    void malformed_hash_is_told_apart_and_verifies_nothing();
};

namespace {

const QString password = "pässword \"1\" $7$";

bool accepts_connections(quint16 _port) {
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, _port);
    return socket.waitForConnected(100);
}

/// A broker of its own for one test, with one user "alice".
class broker_t {
 public:
    explicit broker_t(const QString& _hash) {
        write("passwords", "alice:" + _hash.toUtf8() + "\n");
        write("broker.conf", "listener " + QByteArray::number(port) +
                                 " 127.0.0.1\nallow_anonymous false\nuser root\npassword_file " +
                                 folder.filePath("passwords").toUtf8() + "\n");
        process.start("mosquitto", {"-c", folder.filePath("broker.conf")});
    }
    ~broker_t() {
        process.terminate();
        process.waitForFinished();
    }
    bool ready() { return process.state() == QProcess::Running && accepts_connections(port); }

    /// Exit status of a publication with the given password.
    int publish(const QString& _password) const {
        return QProcess::execute(
            "mosquitto_pub", {"-h", "127.0.0.1", "-p", QString::number(port), "-u", "alice", "-P",
                              _password, "-t", "x", "-m", "x", "-q", "1", "--quiet"});
    }

 private:
    void write(const QString& _name, const QByteArray& _bytes) const {
        QFile file(folder.filePath(_name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(_bytes);
    }

    QTemporaryDir folder;
    QProcess process;
    const quint16 port = kit::free_port();
};

}  // namespace

void tst_broker_hash::own_hash_verifies_and_has_the_brokers_form() {
    const QString hash = make_password_hash(password);
    QVERIFY(is_password_hash(hash));
    QVERIFY(hash.startsWith("$7$5000$"));
    QVERIFY(make_password_hash(password, 7).startsWith("$7$7$"));
    QVERIFY(verify_password(password, hash));
    QVERIFY(!verify_password(password + "x", hash));
    QVERIFY(!verify_password("", hash));
}

void tst_broker_hash::two_hashes_of_one_password_differ() {
    QVERIFY(make_password_hash(password) != make_password_hash(password));
}

void tst_broker_hash::hash_of_the_brokers_tool_verifies() {
    QTemporaryDir folder;
    const QString path = folder.filePath("passwords");
    QCOMPARE(QProcess::execute("mosquitto_passwd", {"-c", "-b", path, "alice", password}), 0);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString hash = QString::fromUtf8(file.readLine()).trimmed().section(':', 1);
    QVERIFY2(is_password_hash(hash), qPrintable(hash));
    QVERIFY(verify_password(password, hash));
    QVERIFY(!verify_password("other", hash));
}

void tst_broker_hash::broker_accepts_own_hash_and_refuses_another_password_data() {
    QTest::addColumn<QString>("right");
    QTest::addColumn<int>("iterations");
    QTest::newRow("odd letters") << password << iterations_chosen;
    QTest::newRow("long") << QString(256, 'x') << iterations_chosen;
    QTest::newRow("drawn") << "0123456789abcdef" << iterations_drawn;
}

void tst_broker_hash::broker_accepts_own_hash_and_refuses_another_password() {
    QFETCH(QString, right);
    QFETCH(int, iterations);
    broker_t broker(make_password_hash(right, iterations));
    QTRY_VERIFY(broker.ready());
    QCOMPARE(broker.publish(right), 0);
    QVERIFY(broker.publish(right + "x") != 0);
}

void tst_broker_hash::malformed_hash_is_told_apart_and_verifies_nothing_data() {
    QTest::addColumn<QString>("hash");
    const QString salt(16, 'A');
    const QString key = QString(86, 'A') + "==";
    QTest::newRow("empty") << "";
    QTest::newRow("clear text") << "secret";
    QTest::newRow("another method") << "$6$101$" + salt + "$" + key;
    QTest::newRow("no iterations") << "$7$0$" + salt + "$" + key;
    QTest::newRow("iterations that would stall") << "$7$10000000$" + salt + "$" + key;
    QTest::newRow("short salt") << "$7$101$" + salt.mid(1) + "$" + key;
    QTest::newRow("short hash") << "$7$101$" + salt + "$" + key.mid(1);
    QTest::newRow("line feed") << "$7$101$" + salt + "$" + key + "\n";
}

void tst_broker_hash::malformed_hash_is_told_apart_and_verifies_nothing() {
    QFETCH(QString, hash);
    QVERIFY(!is_password_hash(hash));
    QVERIFY(!verify_password("secret", hash));
}

QTEST_GUILESS_MAIN(tst_broker_hash)
#include "tst_broker_hash.moc"
