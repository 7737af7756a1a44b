#include "accounts/session_deleter_t.h"

#include <QSignalSpy>
#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace kit;

class tst_session_deleter_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup() { broker.reset(); }
    void sessions_are_gone();
    void broker_that_is_gone_is_no_reason_to_wait();
    void stopped_means_forgotten();

 private:
    void leave_sessions(int _count);
    raw_connect_t session(int _number) const;
    comunication::client_settings_t settings(const QString& _path) const;

    std::unique_ptr<plugin_broker_t> broker;
};

void tst_session_deleter_t::init() {
    broker = std::make_unique<plugin_broker_t>(
        "plugin_opt_at_once_ms 1000\nplugin_opt_sessions_of_user 1000");
    QVERIFY(broker->connect_host());
    QCOMPARE(broker->tell_both(), "done 1");
}

raw_connect_t tst_session_deleter_t::session(int _number) const {
    return {.name = "alice",
            .id = "s " + QByteArray::number(_number),
            .version = 4 + _number % 2,
            .clean = false,
            .expiry = 1'000};
}

void tst_session_deleter_t::leave_sessions(int _count) {
    for (int i = 0; i < _count; ++i) {
        const auto alice = broker->enter(session(i));
        alice->subscribe("local/api/v1/alice/#");
    }
}

comunication::client_settings_t tst_session_deleter_t::settings(const QString& _path) const {
    comunication::client_settings_t made;
    made.host = _path;
    made.port = 0;
    made.username = QStringLiteral("@torlan");
    made.password = QString::fromLatin1(plugin_broker_t::host_password);
    return made;
}

void tst_session_deleter_t::sessions_are_gone() {
    leave_sessions(50);
    accounts::session_deleter_t deleter;
    deleter.set_connection(settings(broker->path));
    QSignalSpy idle(&deleter, &accounts::session_deleter_t::idle);
    QStringList ids;
    for (int i = 0; i < 49; ++i) {
        ids.append(QString::fromLatin1(session(i).id));
    }
    // Twice is as good as once, and one that is none does no harm.
    deleter.add(ids + QStringList{"none", ""});
    deleter.add(ids);
    QVERIFY(!deleter.is_idle());
    QVERIFY(idle.wait());
    QVERIFY(deleter.is_idle());
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(broker->enter(session(i))->had_session(), i == 49);
    }
}

void tst_session_deleter_t::broker_that_is_gone_is_no_reason_to_wait() {
    accounts::session_deleter_t deleter;
    deleter.set_connection(settings(broker->path + "-none"));
    QSignalSpy idle(&deleter, &accounts::session_deleter_t::idle);
    deleter.add({"a", "b", "c", "d", "e", "f"});
    QVERIFY(idle.wait());
}

void tst_session_deleter_t::stopped_means_forgotten() {
    leave_sessions(20);
    accounts::session_deleter_t deleter;
    deleter.set_connection(settings(broker->path));
    QSignalSpy idle(&deleter, &accounts::session_deleter_t::idle);
    QStringList ids;
    for (int i = 0; i < 20; ++i) {
        ids.append(QString::fromLatin1(session(i).id));
    }
    deleter.add(ids);
    deleter.stop();
    QVERIFY(deleter.is_idle());
    deleter.add({ids.last()});
    QVERIFY(idle.wait());
    QVERIFY(!broker->enter(session(19))->had_session());
    QVERIFY(broker->enter(session(18))->had_session());
}

QTEST_GUILESS_MAIN(tst_session_deleter_t)
#include "tst_session_deleter_t.moc"
