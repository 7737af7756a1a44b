#include <QTest>

#include "drivers/plugins/plugin_driver_knx/bus_point_t.h"

using namespace knx;

class tst_bus_point_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void steps_and_triggers_are_no_states_data();
    void steps_and_triggers_are_no_states();
    void value_becomes_a_payload_data();
    void value_becomes_a_payload();
    void refusal_names_item_address_and_value();
    void telegram_becomes_a_value_data();
    void telegram_becomes_a_value();
    void telegram_of_another_length_is_no_value_data();
    void telegram_of_another_length_is_no_value();
};

namespace {

bus_point_t point(const char* _dpt) {
    bus::bus_data_t data;
    data.dpt = QString::fromLatin1(_dpt);
    data.write = "1/1/1";
    return bus_point_t::from_data("i-1", data);
}

}  // namespace

void tst_bus_point_t::steps_and_triggers_are_no_states_data() {
    QTest::addColumn<bool>("is_state");
    for (const char* event : {"1.007", "1.008", "1.010", "1.015", "1.017", "2.001", "3.007", "3",
                              "17.001", "18.001", "206.100"}) {
        QTest::newRow(event) << false;
    }
    for (const char* state : {"1.001", "1", "1.009", "5.001", "9.001", "20.102", "16.000"}) {
        QTest::newRow(state) << true;
    }
}

void tst_bus_point_t::steps_and_triggers_are_no_states() {
    QTEST(point(QTest::currentDataTag()).is_state(), "is_state");
}

void tst_bus_point_t::value_becomes_a_payload_data() {
    QTest::addColumn<QByteArray>("dpt");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<bool>("is_short");
    const auto row = [](const char* _dpt, const char* _value, const char* _hex, bool _short) {
        QTest::addRow("%s %s", _dpt, _value)
            << QByteArray(_dpt) << QString::fromLatin1(_value) << QByteArray(_hex) << _short;
    };
    row("1.001", "1", "01", true);
    row("3.007", "9", "09", true);
    row("5.001", "50", "80", false);
    row("5.010", "1", "01", false);
    row("9.001", "21.5", "0c33", false);
    row("206.100", "0A0b", "0a0b", false);
    row("206.100", "000102030405060708090a0b0c0d", "000102030405060708090a0b0c0d", false);
}

void tst_bus_point_t::value_becomes_a_payload() {
    QFETCH(QByteArray, dpt);
    QFETCH(QString, value);
    const auto payload = point(dpt).encode(value);
    QCOMPARE(payload.error, QString());
    QTEST(payload.value.data.toHex(), "hex");
    QTEST(payload.value.is_short, "is_short");
}

void tst_bus_point_t::refusal_names_item_address_and_value() {
    QCOMPARE(point("9.001").encode("700000").error,
             "Item i-1, address 1/1/1: The value \"700000\" is out of range for type 9.001 "
             "(temperature): -273 to 670760 °C.");
    for (const char* wrong : {"0g", "", "0", "000102030405060708090a0b0c0d0e"}) {
        QCOMPARE(point("206.100").encode(wrong).error,
                 "Item i-1, address 1/1/1: The value must be 1 to 14 bytes, two hexadecimal digits "
                 "for each.");
    }
}

void tst_bus_point_t::telegram_becomes_a_value_data() {
    QTest::addColumn<QByteArray>("dpt");
    QTest::addColumn<QByteArray>("apdu");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* _dpt, const char* _apdu, const char* _value) {
        QTest::addRow("%s %s", _dpt, _apdu)
            << QByteArray(_dpt) << QByteArray(_apdu) << QString::fromLatin1(_value);
    };
    row("1.001", "0081", "1");
    row("9.001", "00800c33", "21.5");
    row("9.001", "00400c33", "21.5");
    row("206.100", "00800a0b", "0a0b");
    row("206.100", "0081", "01");
}

void tst_bus_point_t::telegram_becomes_a_value() {
    QFETCH(QByteArray, dpt);
    QFETCH(QByteArray, apdu);
    const auto value = point(dpt).decode(*telegram_from_apdu(1, 0x0901, QByteArray::fromHex(apdu)));
    QCOMPARE(value.error, QString());
    QTEST(value.value, "value");
}

void tst_bus_point_t::telegram_of_another_length_is_no_value_data() {
    QTest::addColumn<QByteArray>("dpt");
    QTest::addColumn<QByteArray>("apdu");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* _dpt, const char* _apdu, const char* _error) {
        QTest::addRow("%s %s", _dpt, _apdu)
            << QByteArray(_dpt) << QByteArray(_apdu)
            << "Item i-1, address 1/1/1: " + QString::fromLatin1(_error);
    };
    row("1.001", "008001", "Type 1.001 travels in another length than 01.");
    row("5.001", "0081", "Type 5.001 travels in another length than 01.");
    row("9.001", "008001", "Type 9.001 (temperature) has 2 bytes, not 1.");
    row("9.001", "00807fff", "The bytes 7fff are no value of type 9.001 (temperature).");
}

void tst_bus_point_t::telegram_of_another_length_is_no_value() {
    QFETCH(QByteArray, dpt);
    QFETCH(QByteArray, apdu);
    QTEST(point(dpt).decode(*telegram_from_apdu(1, 0x0901, QByteArray::fromHex(apdu))).error,
          "error");
}

QTEST_GUILESS_MAIN(tst_bus_point_t)
#include "tst_bus_point_t.moc"
