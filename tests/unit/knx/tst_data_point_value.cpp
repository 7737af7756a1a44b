#include <QRandomGenerator>
#include <QTest>
#include <algorithm>

#include "knx/data_point_types.h"
#include "knx/data_point_value.h"

class tst_data_point_value : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void text_and_bytes_become_each_other_data();
    void text_and_bytes_become_each_other();
    void other_texts_become_the_same_bytes_data();
    void other_texts_become_the_same_bytes();
    void other_bytes_become_a_text_data();
    void other_bytes_become_a_text();
    void refused_text_names_type_value_and_range_data();
    void refused_text_names_type_value_and_range();
    void refused_bytes_name_the_type_data();
    void refused_bytes_name_the_type();
    void every_value_of_a_small_type_survives_its_text();
    void any_bytes_are_a_value_that_survives_or_refused();
    void no_text_with_fewer_decimals_means_the_same();
    void ends_of_every_range_are_taken_and_nothing_beyond();
};

namespace {

using knx::data_point_type_t;

const data_point_type_t& type_of(const QString& _id) {
    const data_point_type_t* const type = knx::find_data_point_type(_id);
    if (type == nullptr) {
        qFatal("no type %s", qPrintable(_id));
    }
    return *type;
}

void value_columns() {
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("hex");
}

void value_row(const char* _type, const char* _text, const char* _hex) {
    QTest::addRow("%s %s %s", _type, _text, _hex)
        << QString::fromLatin1(_type) << QString::fromUtf8(_text) << QByteArray(_hex);
}

/// A number one step further in its last digit.
QString neighbour(const QString& _number, int _step) {
    const qsizetype point = _number.indexOf(QLatin1Char('.'));
    const int decimals = point < 0 ? 0 : int(_number.size() - point - 1);
    return QString::number(_number.toDouble() + _step * std::pow(10.0, -decimals), 'f', decimals);
}

int decimals_of(const QString& _number) {
    const qsizetype point = _number.indexOf(QLatin1Char('.'));
    return point < 0 ? 0 : int(_number.size() - point - 1);
}

/// How many values of a type to leave out between two that are tried: none of a type with one byte,
/// and none of one for each way to lay out two.
int step_for(const data_point_type_t& _type) {
    const bool is_tried_whole =
        _type.bytes() == 1 || _type.id() == "9" || _type.id() == "7.003" || _type.id() == "8.010";
    return is_tried_whole ? 1 : 251;
}

QByteArray bytes_of(const data_point_type_t& _type, int _number) {
    const char bytes[] = {char(_number >> 8), char(_number)};
    return QByteArray(bytes, 2).right(_type.bytes());
}

}  // namespace

void tst_data_point_value::text_and_bytes_become_each_other_data() {
    value_columns();
    value_row("1.001", "0", "00");
    value_row("1.001", "1", "01");
    value_row("2.001", "3", "03");
    value_row("3.007", "9", "09");
    value_row("3", "15", "0f");
    value_row("4.001", "A", "41");
    value_row("4.002", "ä", "e4");
    value_row("4", "65", "41");
    value_row("5", "128", "80");
    value_row("5.001", "0", "00");
    value_row("5.001", "50", "80");
    value_row("5.001", "99.6", "fe");
    value_row("5.001", "100", "ff");
    value_row("5.003", "181", "80");
    value_row("5.003", "360", "ff");
    value_row("5.004", "200", "c8");
    value_row("5.006", "254", "fe");
    value_row("5.010", "255", "ff");
    value_row("6.001", "-1", "ff");
    value_row("6.010", "-128", "80");
    value_row("6.020", "129", "81");
    value_row("7.001", "65535", "ffff");
    value_row("7.003", "10", "0001");
    value_row("7.004", "6553500", "ffff");
    value_row("7.600", "2700", "0a8c");
    value_row("8.001", "-32768", "8000");
    value_row("8.003", "-10", "ffff");
    value_row("8.010", "-0.01", "ffff");
    value_row("8.010", "100.5", "2742");
    value_row("9.001", "21.5", "0c33");
    value_row("9.001", "-273", "a156");
    value_row("9.001", "-30", "8a24");
    value_row("9.001", "16.96", "06a0");
    value_row("9.001", "0", "0000");
    value_row("9.001", "0.01", "0001");
    value_row("9.001", "-0.01", "87ff");
    value_row("9.001", "20.48", "0c00");
    value_row("9.001", "-20.48", "8000");
    value_row("9.002", "-670760", "f801");
    value_row("9.004", "670433", "7ffe");
    value_row("9.026", "-671088", "f800");
    value_row("9", "21.5", "0c33");
    value_row("10.001", "-W-2T13:23:42", "4d172a");
    value_row("10.001", "13:45:30", "0d2d1e");
    value_row("10.001", "-W-7T23:59:59", "f73b3b");
    value_row("11.001", "2002-01-04", "040102");
    value_row("11.001", "1990-01-31", "1f015a");
    value_row("11.001", "2089-12-04", "040c59");
    value_row("11.001", "2028-02-29", "1d021c");
    value_row("12.001", "4294967295", "ffffffff");
    value_row("13.001", "-2147483648", "80000000");
    value_row("13.010", "1234567", "0012d687");
    value_row("14.007", "-1.31", "bfa7ae14");
    value_row("14.006", "3.1415927", "40490fdb");
    value_row("14.056", "1000000", "49742400");
    value_row("14.056", "0.1", "3dcccccd");
    value_row("14.056", "-0", "80000000");
    value_row("14.000", "0.000001", "358637bd");
    value_row("14", "340282346638528859811704183484516925440", "7f7fffff");
    value_row("15.000", "305419896", "12345678");
    value_row("16.000", "KNX is OK", "4b4e58206973204f4b0000000000");
    value_row("16.000", "ABCDEFGHIJKLMN", "4142434445464748494a4b4c4d4e");
    value_row("16.000", "", "0000000000000000000000000000");
    value_row("16.001", "Küche", "4bfc636865000000000000000000");
    value_row("17.001", "1", "00");
    value_row("17.001", "64", "3f");
    value_row("17", "63", "3f");
    value_row("18.001", "1", "00");
    value_row("18.001", "64", "3f");
    value_row("18.001", "129", "80");
    value_row("18.001", "192", "bf");
    value_row("19.001", "2017-11-28T23:07:24", "750b1c5707182000");
    value_row("19.001", "2026-11-22", "7e0b16e000002200");
    value_row("19.001", "13:45:30", "0000000d2d1e3c00");
    value_row("19.001", "2026-11-22T24:00:00", "7e0b16f800002000");
    value_row("20.102", "3", "03");
    value_row("29.010", "-9223372036854775808", "8000000000000000");
    value_row("29.010", "9223372036854775807", "7fffffffffffffff");
    value_row("29.012", "-1", "ffffffffffffffff");
    value_row("232.600", "16744448", "ff8000");
    value_row("251.600", "280379743272975", "ff00ff00000f");
    value_row("251.600", "281474976710655", "ffffffffffff");
}

void tst_data_point_value::text_and_bytes_become_each_other() {
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QByteArray, hex);
    const auto encoded = knx::encode(type_of(type), text);
    QCOMPARE(encoded.error, QString());
    QCOMPARE(encoded.value.toHex(), hex);
    const auto decoded = knx::decode(type_of(type), QByteArray::fromHex(hex));
    QCOMPARE(decoded.error, QString());
    QCOMPARE(decoded.value, text);
}

void tst_data_point_value::other_texts_become_the_same_bytes_data() {
    value_columns();
    value_row("1.001", "1.0", "01");
    value_row("1.001", "1e0", "01");
    value_row("5.001", "50.196", "80");
    value_row("5.001", "49.99", "7f");
    value_row("5.003", "180", "80");
    value_row("5.010", "3.5", "04");
    value_row("5.010", "3.4999999999999999999", "03");
    value_row("6.010", "-3.5", "fc");
    value_row("7.003", "14", "0001");
    value_row("7.003", "15", "0002");
    value_row("9.001", "21.504", "0c33");
    value_row("9.001", "2.15e+01", "0c33");
    value_row("9.004", "670760", "7ffe");
    value_row("9", "670760.96", "7ffe");
    value_row("10.001", "13:45", "0d2d00");
    value_row("13.010", "1.23457e+06", "0012d68a");
    value_row("14.056", "1.23457e+06", "4996b450");
    value_row("14.056", "+1", "3f800000");
    value_row("14.056", "1e-99", "00000000");
    value_row("232.600", "1.67444e+07", "ff7fd0");
}

void tst_data_point_value::other_texts_become_the_same_bytes() {
    QFETCH(QString, type);
    QFETCH(QString, text);
    const auto encoded = knx::encode(type_of(type), text);
    QCOMPARE(encoded.error, QString());
    QTEST(encoded.value.toHex(), "hex");
}

void tst_data_point_value::other_bytes_become_a_text_data() {
    value_columns();
    value_row("9.001", "0.02", "0801");
    value_row("9.001", "-20.48", "8c00");
    value_row("16.000", "KNX", "4b4e5800207468696e6773000000");
    value_row("19.001", "2017-11-28T23:07:24", "750b1c5707182080");
    value_row("19.001", "23:07:24", "00000017071818ff");
    value_row("19.001", "2017-11-28T23:07:24", "750b1c1707184100");
}

void tst_data_point_value::other_bytes_become_a_text() {
    QFETCH(QString, type);
    QFETCH(QByteArray, hex);
    const auto decoded = knx::decode(type_of(type), QByteArray::fromHex(hex));
    QCOMPARE(decoded.error, QString());
    QTEST(decoded.value, "text");
}

void tst_data_point_value::refused_text_names_type_value_and_range_data() {
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* _type, const char* _text, const char* _error) {
        QTest::addRow("%s %s", _type, _text)
            << QString::fromLatin1(_type) << QString::fromUtf8(_text) << QString::fromUtf8(_error);
    };
    row("9.001", "670761",
        "The value \"670761\" is out of range for type 9.001 (temperature): -273 to 670760 °C.");
    row("9.001", "-273.01",
        "The value \"-273.01\" is out of range for type 9.001 (temperature): -273 to 670760 °C.");
    row("9.001", "hot",
        "The value \"hot\" is no number for type 9.001 (temperature): -273 to 670760 °C.");
    row("9.001", "",
        "The value \"\" is no number for type 9.001 (temperature): -273 to 670760 °C.");
    row("1.001", "2", "The value \"2\" is out of range for type 1.001 (switch): 0 to 1.");
    row("1.001", "0.5", "The value \"0.5\" is no whole number for type 1.001 (switch): 0 to 1.");
    row("1.001", "on", "The value \"on\" is no number for type 1.001 (switch): 0 to 1.");
    row("5.001", "100.1",
        "The value \"100.1\" is out of range for type 5.001 (percentage): 0 to 100 %.");
    row("5.006", "255", "The value \"255\" is out of range for type 5.006 (tariff): 0 to 254.");
    row("17.001", "0", "The value \"0\" is out of range for type 17.001 (scene number): 1 to 64.");
    row("18.001", "65",
        "The value \"65\" is out of range for type 18.001 (scene control): 1 to 64, 129 to 192 to "
        "learn it.");
    row("18.001", "128",
        "The value \"128\" is out of range for type 18.001 (scene control): 1 to 64, 129 to 192 to "
        "learn it.");
    row("20.102", "5", "The value \"5\" is out of range for type 20.102 (HVAC mode): 0 to 4.");
    row("14.056", "1e39",
        "The value \"1e39\" is out of range for type 14.056 (power): any number W.");
    row("29.010", "9223372036854775808",
        "The value \"9223372036854775808\" is out of range for type 29.010 (active energy): "
        "-9223372036854775808 to 9223372036854775807 Wh.");
    row("16.000", "Küche",
        "The value \"Küche\" is no value for type 16.000 (character string (ASCII)): ASCII text.");
    row("16.001", "ABCDEFGHIJKLMNO",
        "The value \"ABCDEFGHIJKLMNO\" is no value for type 16.001 (character string (ISO "
        "8859-1)): Latin-1 text.");
    row("4.001", "AB",
        "The value \"AB\" is no value for type 4.001 (character (ASCII)): ASCII text.");
    row("4.001", "", "The value \"\" is no value for type 4.001 (character (ASCII)): ASCII text.");
    row("10.001", "24:00:00",
        "The value \"24:00:00\" is no value for type 10.001 (time of day): 13:45:30, with a day of "
        "the week -W-3T13:45:30.");
    row("11.001", "2026-02-29",
        "The value \"2026-02-29\" is no value for type 11.001 (date): 1990-01-01 to 2089-12-31.");
    row("11.001", "2090-01-01",
        "The value \"2090-01-01\" is no value for type 11.001 (date): 1990-01-01 to 2089-12-31.");
    row("19.001", "2026-11-22T",
        "The value \"2026-11-22T\" is no value for type 19.001 (date time): 1900-01-01T00:00:00 to "
        "2155-12-31T24:00:00.");
}

void tst_data_point_value::refused_text_names_type_value_and_range() {
    QFETCH(QString, type);
    QFETCH(QString, text);
    QTEST(knx::encode(type_of(type), text).error, "error");
}

void tst_data_point_value::refused_bytes_name_the_type_data() {
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* _type, const char* _hex, const char* _error) {
        QTest::addRow("%s %s", _type, _hex)
            << QString::fromLatin1(_type) << QByteArray(_hex) << QString::fromUtf8(_error);
    };
    row("9.001", "7fff", "The bytes 7fff are no value of type 9.001 (temperature).");
    row("9", "7fff", "The bytes 7fff are no value of type 9 (16-bit float value).");
    row("9.001", "a155", "The bytes a155 are no value of type 9.001 (temperature).");
    row("9.004", "87ff", "The bytes 87ff are no value of type 9.004 (illuminance).");
    row("9.001", "0c", "Type 9.001 (temperature) has 2 bytes, not 1.");
    row("9.001", "", "Type 9.001 (temperature) has 2 bytes, not 0.");
    row("9.001", "000c33", "Type 9.001 (temperature) has 2 bytes, not 3.");
    row("1.001", "02", "The bytes 02 are no value of type 1.001 (switch).");
    row("3.007", "10", "The bytes 10 are no value of type 3.007 (dimming control).");
    row("17.001", "40", "The bytes 40 are no value of type 17.001 (scene number).");
    row("18.001", "7f", "The bytes 7f are no value of type 18.001 (scene control).");
    row("18.001", "c0", "The bytes c0 are no value of type 18.001 (scene control).");
    row("14.056", "7f800000", "The bytes 7f800000 are no value of type 14.056 (power).");
    row("14.056", "7fc00000", "The bytes 7fc00000 are no value of type 14.056 (power).");
    row("10.001", "183b3b", "The bytes 183b3b are no value of type 10.001 (time of day).");
    row("10.001", "003c00", "The bytes 003c00 are no value of type 10.001 (time of day).");
    row("11.001", "1f0202", "The bytes 1f0202 are no value of type 11.001 (date).");
    row("11.001", "010164", "The bytes 010164 are no value of type 11.001 (date).");
    row("16.000", "4bfc636865000000000000000000",
        "The bytes 4bfc636865000000000000000000 are no value of type 16.000 (character string "
        "(ASCII)).");
    row("16.001", "0a000000000000000000000000000a",
        "Type 16.001 (character string (ISO 8859-1)) has 14 bytes, not 15.");
    row("16.001", "410a000000000000000000000000",
        "The bytes 410a000000000000000000000000 are no value of type 16.001 (character string (ISO "
        "8859-1)).");
    row("19.001", "750b1c570718a000",
        "The bytes 750b1c570718a000 are no value of type 19.001 (date time).");
    row("19.001", "0000000000001a00",
        "The bytes 0000000000001a00 are no value of type 19.001 (date time).");
    row("19.001", "750b1c3800012000",
        "The bytes 750b1c3800012000 are no value of type 19.001 (date time).");
}

void tst_data_point_value::refused_bytes_name_the_type() {
    QFETCH(QString, type);
    QFETCH(QByteArray, hex);
    QTEST(knx::decode(type_of(type), QByteArray::fromHex(hex)).error, "error");
}

/// Numbers of two bytes with a fraction can be written in several ways: there the number survives.
void tst_data_point_value::every_value_of_a_small_type_survives_its_text() {
    for (const data_point_type_t& type : knx::data_point_types()) {
        int taken = 0;
        const int count = type.bytes() <= 2 ? 1 << (8 * type.bytes()) : 0;
        for (int number = 0; number < count; number += step_for(type)) {
            const QByteArray bytes = bytes_of(type, number);
            const auto text = knx::decode(type, bytes);
            if (!text.is_ok()) {
                continue;
            }
            ++taken;
            const auto again = knx::encode(type, text.value);
            QVERIFY2(again.is_ok(), qPrintable(again.error));
            if (type.coding != knx::coding_t::float16) {
                QCOMPARE(again.value.toHex(), bytes.toHex());
            } else if (again.value != bytes) {
                QVERIFY(((number >> 11) & 15) > 0);
                QCOMPARE(knx::decode(type, again.value).value, text.value);
            }
        }
        QVERIFY2(count == 0 || taken > 1, qPrintable(type.id()));
    }
}

/// Bytes that encode() writes come back; others are read as the same value ever after.
void tst_data_point_value::any_bytes_are_a_value_that_survives_or_refused() {
    constexpr int tries = 30;
    QRandomGenerator random(4711);
    for (const data_point_type_t& type : knx::data_point_types()) {
        int taken = 0;
        for (int i = 0; i < tries * 16; ++i) {
            QByteArray bytes(i < tries ? type.bytes() : i / tries, '\0');
            // Mostly small bytes: dates, texts and single bits are among them.
            const int highest = 1 << (1 + i % 8);
            std::generate(bytes.begin(), bytes.end(),
                          [&]() { return char(random.bounded(highest)); });
            const auto text = knx::decode(type, bytes);
            if (!text.is_ok()) {
                QVERIFY(text.error.contains(type.id()));
                continue;
            }
            ++taken;
            QCOMPARE(bytes.size(), type.bytes());
            const auto written = knx::encode(type, text.value);
            QVERIFY2(written.is_ok(), qPrintable(written.error));
            const auto again = knx::decode(type, written.value);
            QCOMPARE(again.value, text.value);
            QCOMPARE(knx::encode(type, again.value).value.toHex(), written.value.toHex());
        }
        QVERIFY2(taken > 0, qPrintable(type.id()));
    }
}

void tst_data_point_value::no_text_with_fewer_decimals_means_the_same() {
    for (const char* id : {"5.001", "5.003", "9.001"}) {
        const data_point_type_t& type = type_of(id);
        for (int number = 0; number < 1 << (8 * type.bytes()); number += type.bytes() * 4 - 3) {
            const QByteArray bytes = bytes_of(type, number);
            const auto text = knx::decode(type, bytes);
            const int decimals = text.is_ok() ? decimals_of(text.value) : 0;
            if (decimals == 0) {
                continue;
            }
            const QByteArray usual = knx::encode(type, text.value).value;
            const QString shorter = QString::number(text.value.toDouble(), 'f', decimals - 1);
            for (const QString& candidate :
                 {shorter, neighbour(shorter, 1), neighbour(shorter, -1)}) {
                QVERIFY2(knx::encode(type, candidate).value != usual,
                         qPrintable(QStringLiteral("%1 %2").arg(text.value, candidate)));
            }
        }
    }
}

void tst_data_point_value::ends_of_every_range_are_taken_and_nothing_beyond() {
    for (const data_point_type_t& type : knx::data_point_types()) {
        if (*type.lowest == '\0') {
            continue;
        }
        const QString lowest = QString::fromLatin1(type.lowest);
        const QString highest = QString::fromLatin1(type.highest);
        for (const QString& taken : {lowest, highest}) {
            const auto bytes = knx::encode(type, taken);
            QVERIFY2(bytes.is_ok(), qPrintable(bytes.error));
            QCOMPARE(bytes.value.size(), type.bytes());
        }
        const QString beyond = lowest.startsWith('-') ? lowest + (lowest.contains('.') ? "1" : ".1")
                                                      : QStringLiteral("-1");
        QVERIFY2(!knx::encode(type, beyond).is_ok(), qPrintable(type.id() + " " + beyond));
        const QString above = highest + (highest.contains('.') ? "1" : ".1");
        QVERIFY2(!knx::encode(type, above).is_ok(), qPrintable(type.id() + " " + above));
    }
}

QTEST_GUILESS_MAIN(tst_data_point_value)
#include "tst_data_point_value.moc"
