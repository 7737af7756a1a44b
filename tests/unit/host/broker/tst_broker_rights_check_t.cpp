#include <QFile>
#include <QLocalServer>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

#include "broker/broker_config_t.h"
#include "broker/broker_rights_check_t.h"
#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"

using broker::broker_config_t;
using broker::broker_rights_check_t;
using broker::rights_check_settings_t;
using namespace kit;

namespace {

const QByteArray tight_rules = R"(user @torlan
topic readwrite #
topic readwrite $SYS/#

pattern write local/api/v1/%u/+/request/#
pattern read local/api/v1/%u/#
pattern read home/1/connection
)";

QByteArray password_line(const QString& _name) {
    return (_name + ":" + real_broker_t::account(_name).password_hash).toUtf8() + "\n";
}

/// A broker whose rules, in files, a test may spoil. Run by root it stays root, to read the test's
/// folder.
class spoiled_broker_t {
 public:
    ~spoiled_broker_t() {
        process.kill();
        process.waitForFinished();
    }

    bool start(const QByteArray& _right, const QByteArray& _wrong, const QByteArray& _more_acl) {
        const auto path = [this](const char* _name) { return folder.filePath(_name); };
        write(path("passwords"), password_line("@torlan") + password_line("probe"));
        write(path("acl"), tight_rules + _more_acl);
        QByteArray text = broker_config_t::configuration(
            settings, "listener 0 " + path("socket").toUtf8() + "\npassword_file " +
                          path("passwords").toUtf8() + "\nacl_file " + path("acl").toUtf8() + "\n");
        write(path("conf"), text.replace(_right, _wrong) + "user root\n");
        process.start("mosquitto", {"-c", path("conf")});
        return QTest::qWaitFor([this]() {
            mqtt_client_t host;
            return let_host_in(&host) == 0;
        });
    }

    int let_host_in(mqtt_client_t* _client) const {
        return _client->sign_in_local(folder.filePath("socket"), "@torlan", password_of("@torlan"));
    }

    rights_check_settings_t check_settings() const {
        rights_check_settings_t made;
        made.port = settings.port;
        made.host_account = "@torlan";
        made.host_password = password_of("@torlan");
        made.host_socket = folder.filePath("socket");
        made.broker_process = process.processId();
        made.probe_account = "probe";
        made.probe_password = password_of("probe");
        made.connection_topic = settings.connection_topic;
        return made;
    }

    const broker::broker_settings_t settings = real_broker_t::make_settings();

 private:
    static void write(const QString& _path, const QByteArray& _text) {
        QFile file(_path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(_text);
        }
    }

    QTemporaryDir folder;
    QProcess process;
};

}  // namespace

class tst_broker_rights_check_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void own_rules_pass();
    void weakened_rules_are_caught_data();
    void weakened_rules_are_caught();
    void nothing_stays_retained_data();
    void nothing_stays_retained();
    void wrong_password_is_told();
    void silent_broker_is_bounded();
    void missing_broker_is_told();
};

void tst_broker_rights_check_t::initTestCase() {
    qputenv("PATH", qgetenv("PATH") + ":/usr/sbin");
}

void tst_broker_rights_check_t::own_rules_pass() {
    real_broker_t broker;
    QVERIFY(broker.process.start({real_broker_t::account("probe")}).is_ok());
    QVERIFY(broker.process.wait_until_listening().is_ok());
    rights_check_settings_t settings;
    settings.port = broker.settings.port;
    settings.host_account = broker.settings.host_account;
    settings.host_password = broker.process.host_password();
    settings.host_socket = broker.process.host_socket();
    settings.broker_process = broker.process.process_id();
    settings.probe_account = "probe";
    settings.probe_password = password_of("probe");
    settings.connection_topic = broker.settings.connection_topic;
    QCOMPARE(broker_rights_check_t(settings).run().error, QString());
}

void tst_broker_rights_check_t::weakened_rules_are_caught_data() {
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<QByteArray>("wrong");
    QTest::addColumn<QByteArray>("more_acl");
    QTest::addColumn<QString>("told");
    const auto acl = [](const char* _line, const QString& _told) {
        QTest::newRow(_line) << QByteArray("none") << QByteArray() << QByteArray(_line) + "\n"
                             << _told;
    };
    acl("pattern write local/api/v1/+/+/request/#", "lets an API user write local/api/v1/other-");
    acl("pattern write local/api/v1/%u/status/#", "lets an API user write local/api/v1/probe/st");
    acl("pattern write local/api/v1/%u/+/status/#", "lets an API user write local/api/v1/probe/");
    acl("pattern write home/#", "lets an API user write home/1/connection");
    acl("pattern write torlan-check/#", "lets an API user write torlan-check/");
    acl("pattern read local/api/v1/+/status/#", "lets an API user read local/api/v1/other-");
    acl("pattern read local/api/v1/+/+/request/#", "lets an API user read local/api/v1/other-");
    acl("pattern read torlan-check/#", "lets an API user read torlan-check/");
    acl("pattern readwrite #", "lets an API user ");
    QTest::newRow("anonymous") << QByteArray("allow_anonymous false")
                               << QByteArray("allow_anonymous true") << QByteArray()
                               << "lets anonymous clients in";
    QTest::newRow("$SYS") << QByteArray("sys_interval 0") << QByteArray("sys_interval 1")
                          << QByteArray("pattern read $SYS/#\n") << "lets an API user read $SYS/";
}

void tst_broker_rights_check_t::weakened_rules_are_caught() {
    QFETCH(QByteArray, right);
    QFETCH(QByteArray, wrong);
    QFETCH(QByteArray, more_acl);
    QFETCH(QString, told);
    spoiled_broker_t broker;
    QVERIFY(broker.start(right, wrong, more_acl));
    const QString error = broker_rights_check_t(broker.check_settings()).run().error;
    QVERIFY2(error.contains(told), qPrintable(error));
}

void tst_broker_rights_check_t::nothing_stays_retained_data() {
    QTest::addColumn<QByteArray>("more_acl");
    QTest::newRow("tight") << QByteArray();
    QTest::newRow("weak") << QByteArray("pattern readwrite local/#\n");
}

void tst_broker_rights_check_t::nothing_stays_retained() {
    QFETCH(QByteArray, more_acl);
    spoiled_broker_t broker;
    QVERIFY(broker.start("none", "", more_acl));
    QCOMPARE(broker_rights_check_t(broker.check_settings()).run().is_ok(), more_acl.isEmpty());
    mqtt_client_t host;
    QCOMPARE(broker.let_host_in(&host), 0);
    QCOMPARE(host.publish("fence", "{}", true), 0);
    QVERIFY(host.subscribe("#"));
    host.heard("fence");
    QCOMPARE(host.messages().size(), 1);
}

void tst_broker_rights_check_t::wrong_password_is_told() {
    spoiled_broker_t broker;
    QVERIFY(broker.start("none", "", ""));
    auto settings = broker.check_settings();
    settings.probe_password = "secret";
    const QString error = broker_rights_check_t(settings).run().error;
    QVERIFY(error.contains("does not let the probe's account in"));
    QVERIFY(!error.contains("secret"));
}

void tst_broker_rights_check_t::silent_broker_is_bounded() {
    const QTemporaryDir folder;
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    QLocalServer silent_to_the_host;
    QVERIFY(silent_to_the_host.listen(folder.filePath("socket")));
    rights_check_settings_t settings;
    settings.port = silent.serverPort();
    settings.host_socket = folder.filePath("socket");
    settings.timeout = std::chrono::milliseconds(100);
    QVERIFY(broker_rights_check_t(settings).run().error.contains("in time"));
}

void tst_broker_rights_check_t::missing_broker_is_told() {
    rights_check_settings_t settings;
    settings.port = free_port();
    QVERIFY(broker_rights_check_t(settings).run().error.contains("does not let"));
}

QTEST_GUILESS_MAIN(tst_broker_rights_check_t)
#include "tst_broker_rights_check_t.moc"
