#include <QDirIterator>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// What an item takes of clients is the installation's; an answer promises nothing.
class tst_item_limits : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void rights_on_a_thermostat_change_no_window_contact_data();
    void rights_on_a_thermostat_change_no_window_contact();
    void values_that_an_item_does_not_take_are_refused_data();
    void values_that_an_item_does_not_take_are_refused();
    void owner_reports_what_clients_may_not_write();
    void limits_changed_in_a_shell_count_at_once();
    void flood_of_refused_writes_does_not_fill_the_log();

 private:
    /// Of the log, those that tell of a refusal.
    QList<QByteArray> refusals() const;
    /// Whether the log tells that an item does not take a value.
    bool tells(const QByteArray& _item, const QByteArray& _reason) const;
    QString value(const QString& _element, const QString& _function);
    /// A write that is answered as accepted.
    bool write(mqtt_client_t& _client, const QString& _user, const QString& _element,
               const QString& _function, const QJsonValue& _value);
    /// Returns when what was asked before has been handled.
    bool set_point_reaches(double _value);

    host_process_t host;
    mqtt_client_t alice;
    mqtt_client_t bob;
};

void tst_item_limits::initTestCase() {
    const QJsonObject window{
        {"name", "Window"}, {"type", 7}, {"functions", QJsonObject{{"open", "i-win"}}}};
    const QJsonObject sensor{{"name", "Temperature"},
                             {"type", 5},
                             {"functions", QJsonObject{{"temperature", "i-temp"}}}};
    QJsonObject home = with(small_home(), "elements/e-window", window);
    home = with(home, "elements/e-sensor", sensor);
    home = with(home, "items/i-win/writable", false);
    home = with(home, "items/i-temp/writable", false);
    home = with(home, "items/i-lamp",
                QJsonObject{{"value", "0"}, {"min", 0}, {"max", 1}, {"step", 1}});
    home = with(home, "items/i-dim", QJsonObject{{"value", "40"}, {"min", 0}, {"max", 100}});
    home = with(home, "permissions/u-alice",
                QJsonObject{{"e-lamp", "readwrite"},
                            {"e-window", "readwrite"},
                            {"e-sensor", "read"},
                            {"e-therm", "read"}});
    home = with(home, "permissions/u-bob", QJsonObject{{"e-therm", "readwrite"}});
    QVERIFY2(host.import(home), qPrintable(host.error()));
    QVERIFY2(host.error().contains("Item i-win is shared by elements e-therm and e-window"),
             qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(join(bob, host, "bob"));
}

void tst_item_limits::cleanupTestCase() {
    QCOMPARE(host.stop(), 0);
}

void tst_item_limits::init() {
    QCOMPARE(host.control({"set", "i-win", "0"}), 0);
    QTRY_COMPARE(value("e-window", "open"), "0");
}

QList<QByteArray> tst_item_limits::refusals() const {
    QList<QByteArray> lines;
    QDirIterator each(host.data() + "/logs", QDir::Files, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        QFile log(each.next());
        if (log.open(QIODevice::ReadOnly)) {
            lines += log.readAll().split('\n');
        }
    }
    lines.removeIf([](const QByteArray& _line) {
        return !_line.contains(" from a client") && !_line.contains(" from clients");
    });
    return lines;
}

bool tst_item_limits::tells(const QByteArray& _item, const QByteArray& _reason) const {
    const QList<QByteArray> lines = refusals();
    return std::any_of(lines.begin(), lines.end(), [&](const QByteArray& _line) {
        return _line.contains("Item " + _item + " does not take ") && _line.contains(_reason);
    });
}

QString tst_item_limits::value(const QString& _element, const QString& _function) {
    return value_in(alice.request(request_topic("alice", "get", _element)), _function);
}

bool tst_item_limits::write(mqtt_client_t& _client, const QString& _user, const QString& _element,
                            const QString& _function, const QJsonValue& _value) {
    const QJsonObject answer =
        _client.request(request_topic(_user, "set", _element), write_payload(_function, _value));
    return answer["data"]["functions"][_function] == QJsonValue("202");
}

bool tst_item_limits::set_point_reaches(double _value) {
    return write(bob, "bob", "e-therm", "thermo/setpoint", _value) &&
           QTest::qWaitFor([this, _value] {
               return value("e-therm", "thermo/setpoint") == QString::number(_value);
           });
}

void tst_item_limits::rights_on_a_thermostat_change_no_window_contact_data() {
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("touched");
    QTest::addColumn<QByteArray>("item");
    QTest::newRow("contact") << "id_win"
                             << "e-window"
                             << "open" << QByteArray("i-win");
    QTest::newRow("measured temperature") << "thermo/id_actual"
                                          << "e-sensor"
                                          << "temperature" << QByteArray("i-win");
}

void tst_item_limits::rights_on_a_thermostat_change_no_window_contact() {
    QFETCH(QString, function);
    QFETCH(QString, element);
    QFETCH(QString, touched);
    QFETCH(QByteArray, item);
    const QString before = value(element, touched);
    QVERIFY(write(bob, "bob", "e-therm", function, 1));
    QVERIFY(set_point_reaches(before == "0" ? 22 : 23));
    QCOMPARE(value(element, touched), before);
    QCOMPARE(value("e-window", "open"), "0");
    QTRY_VERIFY(tells(item, "it is not writable"));
}

void tst_item_limits::values_that_an_item_does_not_take_are_refused_data() {
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("function");
    QTest::addColumn<double>("asked");
    QTest::newRow("level 101") << "e-lamp"
                               << "dim" << 101.0;
    QTest::newRow("lamp at 3.5") << "e-lamp"
                                 << "execute" << 3.5;
    QTest::newRow("lamp at 0.5") << "e-lamp"
                                 << "execute" << 0.5;
    QTest::newRow("opened contact") << "e-window"
                                    << "open" << 1.0;
}

void tst_item_limits::values_that_an_item_does_not_take_are_refused() {
    QFETCH(QString, element);
    QFETCH(QString, function);
    QFETCH(double, asked);
    const QString before = value(element, function);
    QVERIFY(write(alice, "alice", element, function, asked));
    QVERIFY(set_point_reaches(value("e-therm", "thermo/setpoint") == "20" ? 21 : 20));
    QCOMPARE(value(element, function), before);
    QTRY_VERIFY(refusals().size() > 0);
}

void tst_item_limits::owner_reports_what_clients_may_not_write() {
    QCOMPARE(host.control({"set", "i-win", "1"}), 0);
    QTRY_COMPARE(value("e-window", "open"), "1");
}

void tst_item_limits::limits_changed_in_a_shell_count_at_once() {
    {
        QSqlDatabase shell = QSqlDatabase::addDatabase("QSQLITE", "shell");
        shell.setDatabaseName(host.data() + "/installation.db");
        QVERIFY(shell.open());
        QVERIFY(QSqlQuery(shell).exec("UPDATE items SET max = 150 WHERE id = 'i-dim'"));
    }
    QSqlDatabase::removeDatabase("shell");
    QTRY_VERIFY(write(alice, "alice", "e-lamp", "dim", 150) && value("e-lamp", "dim") == "150");
    QVERIFY(write(alice, "alice", "e-lamp", "dim", 151));
    QVERIFY(set_point_reaches(25));
    QCOMPARE(value("e-lamp", "dim"), "150");
}

void tst_item_limits::flood_of_refused_writes_does_not_fill_the_log() {
    for (int i = 0; i < 200; ++i) {
        QVERIFY(write(alice, "alice", "e-lamp", "execute", 2 + i));
    }
    QVERIFY(set_point_reaches(26));
    QTRY_VERIFY(tells("i-lamp", "it is "));
    // Each of the five items once a minute, and a count; the test is not minutes long.
    QVERIFY2(refusals().size() <= 12, refusals().join('\n').constData());
}

QTEST_GUILESS_MAIN(tst_item_limits)
#include "tst_item_limits.moc"
