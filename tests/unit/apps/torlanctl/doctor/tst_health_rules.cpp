#include "doctor/health_rules.h"

#include <QJsonArray>
#include <QTest>

using namespace torlan;

Q_DECLARE_METATYPE(torlan::health_t)

class tst_health_rules : public QObject {
    Q_OBJECT

    static constexpr qint64 mib = 1 << 20;

 private Q_SLOTS:
    void room_is_judged_data() {
        QTest::addColumn<qint64>("free");
        QTest::addColumn<bool>("read_only");
        QTest::addColumn<health_t>("health");
        QTest::newRow("enough") << 512 * mib << false << health_t::ok;
        QTest::newRow("little") << 512 * mib - 1 << false << health_t::warning;
        QTest::newRow("still little") << 64 * mib << false << health_t::warning;
        QTest::newRow("none") << 64 * mib - 1 << false << health_t::problem;
        QTest::newRow("read-only") << 9000 * mib << true << health_t::problem;
    }
    void room_is_judged() {
        QFETCH(qint64, free);
        QFETCH(bool, read_only);
        QTEST(health_rules::disk("/data", free, 10'000 * mib, read_only).health, "health");
    }

    void file_with_secrets_is_its_owners_alone_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<health_t>("health");
        QTest::newRow("owner's") << 0100600 << health_t::ok;
        QTest::newRow("read by all") << 0100604 << health_t::warning;
        QTest::newRow("read by a group") << 0100640 << health_t::warning;
        QTest::newRow("written by a group") << 0100620 << health_t::problem;
        QTest::newRow("written by all") << 0100666 << health_t::problem;
    }
    void file_with_secrets_is_its_owners_alone() {
        QFETCH(int, mode);
        QTEST(health_rules::secret("x", mode_t(mode)).health, "health");
    }

    void clock_is_judged_data() {
        QTest::addColumn<int>("year");
        QTest::addColumn<bool>("synchronised");
        QTest::addColumn<int>("by_clock");
        QTest::addColumn<int>("by_machine");
        QTest::addColumn<health_t>("health");
        QTest::newRow("well") << 2026 << true << 3600 << 3601 << health_t::ok;
        QTest::newRow("no battery") << 1970 << true << 0 << 0 << health_t::problem;
        QTest::newRow("far future") << 2101 << true << 0 << 0 << health_t::problem;
        QTest::newRow("alone") << 2026 << false << 0 << 0 << health_t::warning;
        QTest::newRow("set forward") << 2026 << true << 3700 << 3600 << health_t::warning;
        QTest::newRow("set back") << 2026 << true << 3500 << 3600 << health_t::warning;
        QTest::newRow("drifts") << 2026 << true << 3630 << 3600 << health_t::ok;
    }
    void clock_is_judged() {
        QFETCH(int, year);
        QFETCH(bool, synchronised);
        QFETCH(int, by_clock);
        QFETCH(int, by_machine);
        const findings_t found =
            health_rules::clock({QDateTime(QDate(year, 1, 1), QTime(12, 0), Qt::UTC), synchronised,
                                 std::chrono::seconds(by_clock), std::chrono::seconds(by_machine)});
        QCOMPARE(found.size(), 1);
        QTEST(found[0].health, "health");
    }

    void settings_are_judged_data() {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<health_t>("health");
        const QByteArray whole =
            "{'installation':{'installation_id':'a'},'static':{'torlan':{'paths':{'logs':'/l',"
            "'plugins':'/p'}}}}";
        QTest::newRow("whole") << whole << health_t::ok;
        QTest::newRow("no id") << QByteArray(whole).replace("'a'", "''") << health_t::warning;
        QTest::newRow("no logs") << QByteArray(whole).replace("'/l'", "''") << health_t::warning;
        QTest::newRow("no drivers")
            << QByteArray(whole).replace("plugins", "x") << health_t::warning;
        QTest::newRow("half") << whole.left(40) << health_t::problem;
        QTest::newRow("list") << QByteArray("[]") << health_t::problem;
        QTest::newRow("nothing") << QByteArray() << health_t::problem;
    }
    void settings_are_judged() {
        QFETCH(QByteArray, document);
        const findings_t found = health_rules::settings(document.replace('\'', '"'));
        QCOMPARE(found.size(), 1);
        QTEST(found[0].health, "health");
    }

    void who_listens_is_judged_data() {
        QTest::addColumn<QString>("holder");
        QTest::addColumn<qint64>("process");
        QTest::addColumn<health_t>("health");
        QTest::newRow("nobody") << "" << qint64(7) << health_t::problem;
        QTest::newRow("it") << "process 7 (mosquitto) of user 0" << qint64(7) << health_t::ok;
        QTest::newRow("another") << "process 77 (nc) of user 0" << qint64(7) << health_t::problem;
        QTest::newRow("somebody of whom no more is shown")
            << "a process of user 0" << qint64(7) << health_t::ok;
        QTest::newRow("anybody") << "process 77 (x) of user 0" << qint64(0) << health_t::ok;
    }
    void who_listens_is_judged() {
        QFETCH(QString, holder);
        QFETCH(qint64, process);
        QTEST(health_rules::port("MQTT", 1883, holder, process).health, "health");
    }

    void server_is_judged_data() {
        QTest::addColumn<QJsonObject>("status");
        QTest::addColumn<health_t>("health");
        const QJsonObject ready{{"ready", true}};
        const auto broker = [](bool _runs, bool _knows) {
            return QJsonObject{{"running", _runs}, {"users_confirmed", _knows}};
        };
        const QJsonArray errors{QJsonObject{{"message", "x"}}};
        QTest::newRow("well") << QJsonObject{{"server", ready}, {"broker", broker(true, true)}}
                              << health_t::ok;
        QTest::newRow("starting") << QJsonObject{{"server", QJsonObject{{"ready", false}}}}
                                  << health_t::warning;
        QTest::newRow("no broker")
            << QJsonObject{{"server", ready}, {"broker", broker(false, true)}} << health_t::problem;
        QTest::newRow("nobody let in")
            << QJsonObject{{"server", ready}, {"broker", broker(true, false)}} << health_t::problem;
        QTest::newRow("error") << QJsonObject{{"server", ready},
                                              {"broker", broker(true, true)},
                                              {"errors", errors}}
                               << health_t::warning;
    }
    void server_is_judged() {
        QFETCH(QJsonObject, status);
        QTEST(health_rules::server(status).last().health, "health");
    }

    void retained_states_are_judged_data() {
        QTest::addColumn<int>("missing");
        QTest::addColumn<int>("surplus");
        QTest::addColumn<health_t>("health");
        QTest::newRow("as they should be") << 0 << 0 << health_t::ok;
        QTest::newRow("missing") << 1 << 0 << health_t::warning;
        QTest::newRow("too many") << 0 << 1 << health_t::problem;
    }
    void retained_states_are_judged() {
        QFETCH(int, missing);
        QFETCH(int, surplus);
        const QJsonObject answer{{"expected", 5}, {"missing", missing}, {"surplus", surplus}};
        QTEST(health_rules::retained(answer).health, "health");
    }

    void brokers_version_is_judged_data() {
        QTest::addColumn<health_t>("health");
        QTest::newRow("mosquitto version 2.0.11\n\nmosquitto is an") << health_t::ok;
        QTest::newRow("mosquitto version 2.0.21\n") << health_t::ok;
        QTest::newRow("mosquitto version 2.0.9\n") << health_t::warning;
        QTest::newRow("mosquitto version 2.1.0\n") << health_t::warning;
        QTest::newRow("") << health_t::problem;
        QTest::newRow("sh: not found") << health_t::problem;
    }
    void brokers_version_is_judged() {
        QTEST(health_rules::broker_version(QTest::currentDataTag()).health, "health");
    }

    void versions_are_compared() {
        QCOMPARE(health_rules::version("1", "1").health, health_t::ok);
        QCOMPARE(health_rules::version("1", "2").health, health_t::warning);
    }
};

QTEST_GUILESS_MAIN(tst_health_rules)
#include "tst_health_rules.moc"
