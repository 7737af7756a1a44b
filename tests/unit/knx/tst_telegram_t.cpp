#include <QTest>

#include "knx/telegram_t.h"

using namespace knx;

class tst_telegram_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void bytes_and_telegram_become_each_other_data();
    void bytes_and_telegram_become_each_other();
    void what_is_no_group_telegram_is_left_out_data();
    void what_is_no_group_telegram_is_left_out();
    void every_pair_of_bytes_is_taken_or_left_out();
    void device_as_people_write_it();
};

void tst_telegram_t::bytes_and_telegram_become_each_other_data() {
    QTest::addColumn<QByteArray>("apdu");
    QTest::addColumn<command_t>("command");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("is_short");
    const auto row = [](const char* _apdu, command_t _command, const char* _data, bool _short) {
        QTest::newRow(_apdu) << QByteArray::fromHex(_apdu) << _command << QByteArray::fromHex(_data)
                             << _short;
    };
    row("0000", command_t::read, "", false);
    row("0080", command_t::write, "00", true);
    row("0081", command_t::write, "01", true);
    row("00bf", command_t::write, "3f", true);
    row("0041", command_t::response, "01", true);
    row("00800c33", command_t::write, "0c33", false);
    row("008001", command_t::write, "01", false);
    row("00404b4e58206973204f4b0000000000", command_t::response, "4b4e58206973204f4b0000000000",
        false);
}

void tst_telegram_t::bytes_and_telegram_become_each_other() {
    QFETCH(QByteArray, apdu);
    const auto telegram = telegram_from_apdu(0x1105, 0x0901, apdu);
    QVERIFY(telegram);
    QCOMPARE(telegram->source, quint16(0x1105));
    QCOMPARE(telegram->destination.text(), "1/1/1");
    QTEST(telegram->command, "command");
    QTEST(telegram->data, "data");
    QTEST(telegram->is_short, "is_short");
    QCOMPARE(apdu_of(*telegram).toHex(), apdu.toHex());
    const QByteArray longest = QByteArray::fromHex("0080") + QByteArray(252, 'x');
    QVERIFY(telegram_from_apdu(0x1105, 0x0901, longest));
}

void tst_telegram_t::what_is_no_group_telegram_is_left_out_data() {
    QTest::addColumn<QByteArray>("apdu");
    for (const char* apdu : {"", "00", "00c0", "0380", "0200", "01c1"}) {
        QTest::newRow(apdu) << QByteArray::fromHex(apdu);
    }
    QTest::newRow("one too long") << QByteArray::fromHex("0080") + QByteArray(253, 'x');
    QTest::newRow("endless") << QByteArray::fromHex("0080") + QByteArray(300, 'x');
}

void tst_telegram_t::what_is_no_group_telegram_is_left_out() {
    QFETCH(QByteArray, apdu);
    QVERIFY(!telegram_from_apdu(0x1105, 0x0901, apdu));
    QVERIFY(!telegram_from_apdu(0x1105, 0, QByteArray::fromHex("0081")));
}

void tst_telegram_t::every_pair_of_bytes_is_taken_or_left_out() {
    int taken = 0;
    for (int pair = 0; pair < 0x10000; ++pair) {
        const char bytes[] = {char(pair >> 8), char(pair)};
        const QByteArray apdu(bytes, 2);
        const auto telegram = telegram_from_apdu(1, 1, apdu);
        if (telegram && telegram->command != command_t::read) {
            ++taken;
            QCOMPARE(quint8(apdu_of(*telegram)[1]), quint8(apdu[1]));
        }
    }
    QCOMPARE(taken, 64 * 128);
}

void tst_telegram_t::device_as_people_write_it() {
    QCOMPARE(device_text(0x1105), "1.1.5");
    QCOMPARE(device_text(0xffff), "15.15.255");
}

QTEST_GUILESS_MAIN(tst_telegram_t)
#include "tst_telegram_t.moc"
