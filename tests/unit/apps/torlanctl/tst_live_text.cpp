#include "live_text.h"

#include <QJsonDocument>
#include <QTest>

using namespace torlan;

namespace {

QJsonObject object(const char* _json) {
    return QJsonDocument::fromJson(_json).object();
}

}  // namespace

class tst_live_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "UTC"); }

    void running_server_is_shown() {
        QCOMPARE(status_text(object(R"({
            "server": {"version": "1.2.3", "process": 12, "since": "2026-01-31T12:00:00Z",
                       "ready": true},
            "broker": {"process": 13, "running": true, "users_confirmed": true},
            "bus": {"url": "local:/run/knx", "link": "online"},
            "counts": {"elements": 16, "items": 30, "scenarios": 2, "thermostats": 1, "users": 2},
            "messages": {"received": 5, "published": 40, "dropped": 0, "requests_refused": 1,
                         "reconnects": 0},
            "mqtt": {"address": "127.0.0.1", "port": 1883, "websockets_port": 9001},
            "configuration_port": 4321,
            "paths": {"data": "/d", "log": "/d/logs/x.log", "audit": "/d/logs/audit.log"},
            "errors": [{"time": "2026-01-31T12:00:01.500Z", "message": "It\nrains"}]})")),
                 QString("server      ready, version 1.2.3, process 12, since 2026-01-31 12:00:00\n"
                         "broker      running, process 13, knows its users\n"
                         "bus         local:/run/knx, online\n"
                         "holds       16 elements, 30 items, 2 scenarios, 1 thermostats, 2 users\n"
                         "messages    5 received, 40 published, 0 dropped, 1 requests refused, "
                         "0 reconnects\n"
                         "MQTT        127.0.0.1:1883, WebSockets on 127.0.0.1:9001\n"
                         "settings    127.0.0.1:4321\n"
                         "data        /d\n"
                         "log         /d/logs/x.log\n"
                         "audit       /d/logs/audit.log\n"
                         "errors      the last\n"
                         "  2026-01-31 12:00:01 It rains\n"));
    }

    void starting_server_says_for_what_it_waits() {
        const QString text = status_text(object(R"({
            "server": {"version": "1", "process": 12, "since": "2026-01-31T12:00:00Z",
                       "ready": false, "waiting": "Waiting for x"}, "errors": []})"));
        QVERIFY2(text.startsWith("server      starting: Waiting for x, version 1"),
                 qPrintable(text));
        QVERIFY(!text.contains("broker") && !text.contains("audit"));
        QVERIFY(text.endsWith("errors      none\n"));
    }

    void broker_that_is_not_there_is_shown_data() {
        QTest::addColumn<QString>("broker");
        QTest::addColumn<QString>("text");
        QTest::newRow("dead") << R"({"process": 0, "running": false, "users_confirmed": false})"
                              << "broker      not running\n";
        QTest::newRow("silent") << R"({"process": 7, "running": true, "users_confirmed": false})"
                                << "broker      running, process 7, has not confirmed its users\n";
    }
    void broker_that_is_not_there_is_shown() {
        QFETCH(QString, broker);
        QFETCH(QString, text);
        const QByteArray status = "{\"broker\": " + broker.toUtf8() + "}";
        QVERIFY(status_text(object(status.constData())).contains(text));
    }

    void telegram_is_a_line_data() {
        QTest::addColumn<QString>("telegram");
        QTest::addColumn<QString>("line");
        QTest::newRow("write") << R"({"time": "2026-01-31T12:00:01.500Z", "kind": "write",
            "source": "1.1.5", "address": "1/1/2", "dpt": "1.001", "value": "1",
            "items": ["i-lamp", "i-copy"]})"
                               << "12:00:01.500  1.1.5      -> 1/1/2       write     1.001    1"
                                  "           i-lamp i-copy";
        QTest::newRow("own question") << R"({"time": "2026-01-31T12:00:01.500Z", "kind": "read",
            "source": "", "address": "31/7/255", "dpt": "1.001", "items": []})"
                                      << "12:00:01.500  we         -> 31/7/255    read      1.001  "
                                         "  -           -";
        QTest::newRow("odd text")
            << "{\"time\": \"2026-01-31T12:00:01.500Z\", \"kind\": \"write\", \"source\": "
               "\"1.1.5\", \"address\": \"1/1/2\", \"dpt\": \"16.001\", \"value\": "
               "\"a\\u001b[2Jb\", \"items\": [\"i\"]}"
            << "12:00:01.500  1.1.5      -> 1/1/2       write     16.001   a [2Jb      i";
    }
    void telegram_is_a_line() {
        QFETCH(QString, telegram);
        QFETCH(QString, line);
        QCOMPARE(telegram_text(object(telegram.toUtf8().constData())), line);
    }

    void bus_is_two_lines() {
        QCOMPARE(bus_text(object(R"({"url": "ip:h", "link": "offline", "counters": {"received": 1,
            "sent": 2, "asked": 3, "replaced": 4, "dropped": 5, "refused": 6, "unknown": 7,
            "undecodable": 8, "malformed": 9, "links": 1}})")),
                 QString("bus         ip:h, offline\n"
                         "telegrams   1 received, 2 sent, 3 asked, 4 replaced, 5 dropped, "
                         "6 refused, 7 unknown, 8 undecodable, 9 malformed\n"));
    }
};

QTEST_APPLESS_MAIN(tst_live_text)
#include "tst_live_text.moc"
