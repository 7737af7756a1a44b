#include <QFile>
#include <QSet>
#include <QTest>

#include "accounts/broker_hash.h"
#include "installation/document_reader.h"
#include "installation/document_writer.h"
#include "installation/item_limits.h"

using namespace database::installation;

/// examples/home.json: what people see first, so it must hold one of every kind.
class tst_sample_installation : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void export_of_it_is_stable();
    void every_kind_of_element_is_there();
    void users_have_each_of_the_four_rights();
    void alice_signs_in_with_the_password_that_is_told();
    void items_take_what_makes_sense_data();
    void items_take_what_makes_sense();
    void the_one_on_a_bus_is_the_same_home();

 private:
    static installation_t read(const char* _file);
    QSet<int> types() const;
    /// The different permission bits that a user has.
    QSet<int> rights(const QString& _user) const;

    installation_t home;
};

installation_t tst_sample_installation::read(const char* _file) {
    QFile file(QString::fromLatin1(_file));
    [&]() { QVERIFY(file.open(QIODevice::ReadOnly)); }();
    const auto result = read_document(file.readAll(), file.fileName());
    [&]() { QCOMPARE(result.error, QString()); }();
    return result.value;
}

void tst_sample_installation::initTestCase() {
    home = read(SAMPLE);
    QVERIFY(!home.items.isEmpty());
}

QSet<int> tst_sample_installation::types() const {
    QSet<int> found;
    for (const element_t& element : home.elements) {
        found.insert(element.type);
    }
    return found;
}

QSet<int> tst_sample_installation::rights(const QString& _user) const {
    const QList<int> bits = home.permissions.value(_user).values();
    return QSet<int>(bits.begin(), bits.end());
}

void tst_sample_installation::export_of_it_is_stable() {
    const QByteArray bytes = write_document(home, passwords_t::hashed);
    QCOMPARE(write_document(read_document(bytes, "export").value, passwords_t::hashed), bytes);
}

void tst_sample_installation::every_kind_of_element_is_there() {
    QCOMPARE(home.elements.size(), 44);
    QVERIFY(types().contains({1, 2, 3, 4, 5, 6, 7, 8, 11, 14, 17}));
    QCOMPARE(home.thermostats.size(), 2);
    const auto count = [this](auto _test) {
        return std::count_if(home.elements.begin(), home.elements.end(), _test);
    };
    QCOMPARE(count([](const element_t& _e) { return _e.type == 8 && _e.flags >= 0; }), 4);
    QCOMPARE(count([](const element_t& _e) {
                 return _e.type == 8 && _e.flags < 0 && !_e.functions.isEmpty();
             }),
             1);
    QCOMPARE(count([](const element_t& _e) { return _e.functions.values().contains(QString()); }),
             1);
}

void tst_sample_installation::users_have_each_of_the_four_rights() {
    QCOMPARE(home.users.size(), 4);
    QCOMPARE(home.permissions["u-alice"].size(), home.elements.size());
    QCOMPARE(rights("u-alice"), QSet<int>{3});
    QCOMPARE(rights("u-bob"), QSet<int>{1});
    QCOMPARE(rights("u-carol"), QSet<int>{2});
    QCOMPARE(rights("u-dave"), QSet<int>{});
}

void tst_sample_installation::alice_signs_in_with_the_password_that_is_told() {
    QVERIFY(accounts::verify_password("sample-alice", home.users["u-alice"].password_hash));
}

void tst_sample_installation::items_take_what_makes_sense_data() {
    QTest::addColumn<QString>("item");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QStringList>("refused");
    const auto row = [](const char* _title, const char* _item, const QStringList& _taken,
                        const QStringList& _refused) {
        QTest::newRow(_title) << QString(_item) << _taken << _refused;
    };
    row("lamp", "i-kitchen-ceiling", {"0", "1"}, {"3.5", "0.5", "2", "-1", "on"});
    row("level", "i-living-ceiling-level", {"0", "55.5", "100"}, {"101", "-1"});
    row("blind", "i-bedroom-blind-position", {"0", "100"}, {"101", "-1"});
    row("set point", "i-living-setpoint", {"5", "21.5", "35"}, {"4", "36", "eco"});
    row("mode", "i-living-mode", {"eco", "1"}, {});
    row("siren", "i-scene-panic-siren", {"0", "1"}, {"2"});
    for (const char* item : {"i-bedroom-window", "i-hall-door", "i-living-terrace",
                             "i-living-temperature", "i-bathroom-humidity",
                             "i-kitchen-coffee-power", "i-living-valve", "i-service-pump-hours"}) {
        row(item, item, {}, {"0", "1"});
    }
}

void tst_sample_installation::items_take_what_makes_sense() {
    QFETCH(QString, item);
    QFETCH(QStringList, taken);
    QFETCH(QStringList, refused);
    QVERIFY(home.items.contains(item));
    for (const QString& value : taken) {
        QCOMPARE(refusal(home.items[item].limits, value), QString());
    }
    for (const QString& value : refused) {
        QVERIFY2(!refusal(home.items[item].limits, value).isEmpty(), qPrintable(value));
    }
}

void tst_sample_installation::the_one_on_a_bus_is_the_same_home() {
    installation_t on_bus = read(KNX_SAMPLE);
    QVERIFY(home.item_buses.isEmpty() && home.scenario_buses.isEmpty());
    QCOMPARE(on_bus.scenario_buses.keys(), home.scenarios.keys());
    QSet<QString> addresses;
    for (const bus::bus_data_t& data : on_bus.item_buses) {
        for (const QString& address : data.heard() + QStringList{data.write}) {
            QVERIFY2(address.isEmpty() || !addresses.contains(address), qPrintable(address));
            addresses.insert(address);
        }
    }
    QVERIFY(addresses.size() > 50);
    on_bus.item_buses.clear();
    on_bus.scenario_buses.clear();
    QCOMPARE(write_document(on_bus, passwords_t::left_out),
             write_document(home, passwords_t::left_out));
}

QTEST_GUILESS_MAIN(tst_sample_installation)
#include "tst_sample_installation.moc"
