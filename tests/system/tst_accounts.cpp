#include <pwd.h>
#include <unistd.h>

#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace support;

namespace {

constexpr const char* other_account = "nobody";

/// A line of /proc/<pid>/status, without its name.
QByteArray status_of(qint64 _pid, const QByteArray& _name) {
    QFile file(QStringLiteral("/proc/%1/status").arg(_pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return "unreadable";
    }
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(_name + ':')) {
            return line.mid(_name.size() + 1).simplified();
        }
    }
    return "missing";
}

/// Whether the account can run what was built.
bool reaches(const char* _account, const QString& _program) {
    return QProcess::execute(QStringLiteral("setpriv"),
                             {QStringLiteral("--reuid"), QString::fromLatin1(_account),
                              QStringLiteral("--clear-groups"), QStringLiteral("test"),
                              QStringLiteral("-x"), _program}) == 0;
}

/// What the server says on standard output until it has ended.
QByteArray told(host_process_t& _host) {
    _host.stop();
    return _host.start_output() + _host.process().readAllStandardOutput();
}

}  // namespace

/// What the servers may do on the machine when root starts them.
class tst_accounts : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void another_account_gives_up_everything();
    void root_keeps_what_the_broker_s_start_needs_and_says_so();
    void an_account_that_is_missing_is_one_sentence_data();
    void an_account_that_is_missing_is_one_sentence();
};

void tst_accounts::init() {
    if (::geteuid() != 0) {
        QSKIP("Only root can start a program as another account.");
    }
}

void tst_accounts::another_account_gives_up_everything() {
    if (!reaches(other_account, QStringLiteral(TORLAN_SERVER))) {
        QSKIP("The build folder cannot be entered by other accounts.");
    }
    const passwd* const account = ::getpwnam(other_account);
    QVERIFY(account != nullptr);
    host_process_t host;
    QVERIFY2(host.import(kit::small_home()), qPrintable(host.error()));
    host.use_settings({{"static", QJsonObject()}});
    QCOMPARE(QProcess::execute("chown", {"-R", other_account, host.data()}), 0);
    QVERIFY2(host.start({"--user", other_account}), qPrintable(host.error()));
    const QByteArray id = QByteArray::number(account->pw_uid);
    QCOMPARE(status_of(host.pid(), "Uid"), (id + ' ').repeated(3) + id);
    QCOMPARE(status_of(host.pid(), "CapEff"), QByteArray(16, '0'));
    QCOMPARE(status_of(host.pid(), "CapBnd"), QByteArray(16, '0'));
    QCOMPARE(status_of(host.broker_pid(), "Uid"), (id + ' ').repeated(3) + id);
    kit::mqtt_client_t alice;
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(alice.request(request_topic("alice", "get")).contains("data"));
    QVERIFY(!told(host).contains("runs as root"));
}

void tst_accounts::root_keeps_what_the_broker_s_start_needs_and_says_so() {
    host_process_t host;
    QVERIFY2(host.import(kit::small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    // setuid, setgid, setpcap, chown, fowner, dac_override, kill
    const quint64 kept = 1 << 7 | 1 << 6 | 1 << 8 | 1 << 0 | 1 << 3 | 1 << 1 | 1 << 5;
    QCOMPARE(status_of(host.pid(), "CapEff").toULongLong(nullptr, 16) & ~kept, quint64(0));
    QCOMPARE(status_of(host.broker_pid(), "CapEff"), QByteArray(16, '0'));
    QCOMPARE(told(host).count("runs as root"), 1);
}

void tst_accounts::an_account_that_is_missing_is_one_sentence_data() {
    QTest::addColumn<QString>("program");
    QTest::newRow("server") << TORLAN_SERVER;
    QTest::newRow("settings") << TORLAN_CONFIG;
}

void tst_accounts::an_account_that_is_missing_is_one_sentence() {
    QFETCH(QString, program);
    QProcess process;
    process.start(program, {"--user", "no-such-account"});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 1);
    const QByteArray error = process.readAllStandardError();
    QVERIFY2(error.contains("There is no system account \"no-such-account\"."), error);
    QCOMPARE(error.count('\n'), 1);
}

QTEST_GUILESS_MAIN(tst_accounts)
#include "tst_accounts.moc"
