#include <QTest>

#include "drivers/plugins/plugin_driver_knx/telegram_report.h"

using namespace knx;
using kind_t = bus::bus_telegram_t::kind_t;

class tst_telegram_report : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void telegram_is_shown_as_its_items_read_it_data();
    void telegram_is_shown_as_its_items_read_it();
    void kinds_are_told_apart();
};

namespace {

bus::bus_data_t data(const char* _dpt, const char* _write, const QStringList& _status = {}) {
    bus::bus_data_t data;
    data.dpt = QString::fromLatin1(_dpt);
    data.write = QString::fromLatin1(_write);
    data.status = _status;
    return data;
}

bus_map_t home() {
    bus::bus_data_t scene = data("17.001", "0/7/1");
    scene.scene = 3;
    return bus_map_t({{"i-a", data("1.001", "1/2/1")},
                      {"i-lamp", data("1.001", "1/1/1", {"1/1/2"})},
                      {"i-temperature", data("9.001", "1/2/1")},
                      {"i-other", data("99.001", "1/3/1")}},
                     {{"s-3", scene}});
}

telegram_t telegram(const char* _address, const QByteArray& _hex, bool _is_short) {
    return {0x1105, *group_address_t::from_text(QString::fromLatin1(_address)), command_t::write,
            QByteArray::fromHex(_hex), _is_short};
}

}  // namespace

void tst_telegram_report::telegram_is_shown_as_its_items_read_it_data() {
    QTest::addColumn<telegram_t>("passed");
    QTest::addColumn<QString>("dpt");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QStringList>("ids");
    const auto row = [](const char* _name, const telegram_t& _passed, const char* _dpt,
                        const char* _value, const QStringList& _ids) {
        QTest::newRow(_name) << _passed << QString(_dpt) << QString(_value) << _ids;
    };
    row("heard", telegram("1/1/2", "01", true), "1.001", "1", {"i-lamp"});
    row("written only", telegram("1/1/1", "01", true), "1.001", "1", {"i-lamp"});
    row("first that can read it", telegram("1/2/1", "0c33", false), "9.001", "21.5",
        {"i-a", "i-temperature"});
    row("none can read it", telegram("1/2/1", "0c3344", false), "1.001", "0c3344",
        {"i-a", "i-temperature"});
    row("scene", telegram("0/7/1", "02", false), "17.001", "3", {"s-3"});
    row("unknown type", telegram("1/3/1", "0102", false), "99.001", "0102", {"i-other"});
    row("nobody's", telegram("9/1/1", "0102", false), "", "0102", {});
}

void tst_telegram_report::telegram_is_shown_as_its_items_read_it() {
    QFETCH(telegram_t, passed);
    const bus::bus_telegram_t report = telegram_report(home(), passed);
    QCOMPARE(report.source, "1.1.5");
    QCOMPARE(report.address, passed.destination.text());
    QTEST(report.dpt, "dpt");
    QTEST(report.value, "value");
    QTEST(report.ids, "ids");
}

void tst_telegram_report::kinds_are_told_apart() {
    telegram_t passed = telegram("1/1/2", "", false);
    QCOMPARE(telegram_report(home(), passed).kind, kind_t::write);
    passed.command = command_t::response;
    QCOMPARE(telegram_report(home(), passed).kind, kind_t::response);
    passed.command = command_t::read;
    passed.source = 0;
    const bus::bus_telegram_t question = telegram_report(home(), passed);
    QCOMPARE(question.kind, kind_t::read);
    QCOMPARE(question.source, QString());
    QCOMPARE(question.dpt, "1.001");
    QCOMPARE(question.value, QString());
    QCOMPARE(question.ids, QStringList("i-lamp"));
}

QTEST_APPLESS_MAIN(tst_telegram_report)
#include "tst_telegram_report.moc"
