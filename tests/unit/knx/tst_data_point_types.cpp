#include <QSet>
#include <QTest>

#include "knx/data_point_types.h"
#include "knx/decimal_t.h"

class tst_data_point_types : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void table_has_the_main_types_alone_and_with_sub_types();
    void no_row_is_there_twice();
    void every_row_can_be_read();
    void type_is_found_by_its_id_data();
    void type_is_found_by_its_id();
    void form_of_an_id_data();
    void form_of_an_id();
    void width_of_each_main_type();
};

void tst_data_point_types::table_has_the_main_types_alone_and_with_sub_types() {
    QSet<int> alone;
    QSet<int> with_sub_type;
    for (const auto& type : knx::data_point_types()) {
        (type.sub == knx::main_type_alone ? alone : with_sub_type).insert(type.main);
    }
    QSet<int> expected{29, 232, 251};
    for (int main = 1; main <= 20; ++main) {
        expected.insert(main);
    }
    QCOMPARE(alone, expected);
    QCOMPARE(with_sub_type, expected);
}

void tst_data_point_types::no_row_is_there_twice() {
    QSet<QString> ids;
    for (const auto& type : knx::data_point_types()) {
        ids.insert(type.id());
    }
    QCOMPARE(ids.size(), knx::data_point_types().size());
}

void tst_data_point_types::every_row_can_be_read() {
    for (const auto& type : knx::data_point_types()) {
        const QByteArray id = type.id().toLatin1();
        QVERIFY2(qstrlen(type.name) > 0, id);
        QVERIFY2(!type.range().isEmpty(), id);
        QVERIFY2(knx::is_data_point_type_id(type.id()), id);
        QCOMPARE(*type.lowest == '\0', *type.highest == '\0');
        if (*type.lowest != '\0') {
            const auto lowest = knx::decimal_t::from_text(type.lowest);
            const auto highest = knx::decimal_t::from_text(type.highest);
            QVERIFY2(lowest && highest && knx::decimal_t::compare(*lowest, *highest) < 0, id);
        }
    }
}

void tst_data_point_types::type_is_found_by_its_id_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("range");
    const auto row = [](const char* _id, const char* _name, const char* _range) {
        QTest::newRow(_id) << QString::fromUtf8(_name) << QString::fromUtf8(_range);
    };
    row("1.001", "switch", "0 to 1");
    row("5", "8-bit unsigned value", "0 to 255");
    row("5.001", "percentage", "0 to 100 %");
    row("9.001", "temperature", "-273 to 670760 °C");
    row("12.1200", "volume liquid", "0 to 4294967295 l");
    row("14.056", "power", "any number W");
    row("18.001", "scene control", "1 to 64, 129 to 192 to learn it");
    row("20.102", "HVAC mode", "0 to 4");
    row("251.600", "colour RGBW", "0 to 281474976710655");
}

void tst_data_point_types::type_is_found_by_its_id() {
    const auto* const type =
        knx::find_data_point_type(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(type != nullptr);
    QTEST(QString::fromUtf8(type->name), "name");
    QTEST(type->range(), "range");
}

void tst_data_point_types::form_of_an_id_data() {
    QTest::addColumn<bool>("is_id");
    QTest::addColumn<bool>("is_known");
    const auto row = [](const char* _id, bool _is_id, bool _is_known) {
        QTest::newRow(_id) << _is_id << _is_known;
    };
    row("9", true, true);
    row("9.001", true, true);
    row("9.999", true, false);
    row("206.100", true, false);
    row("21", true, false);
    row("9.1", false, false);
    row("9.", false, false);
    row("09.001", false, false);
    row("0", false, false);
    row("", false, false);
    row("-9", false, false);
    row("9.001 ", false, false);
    row("9,001", false, false);
    row("DPT9", false, false);
    row("9.001.1", false, false);
}

void tst_data_point_types::form_of_an_id() {
    const QString id = QString::fromLatin1(QTest::currentDataTag());
    QTEST(knx::is_data_point_type_id(id), "is_id");
    QTEST(knx::find_data_point_type(id) != nullptr, "is_known");
}

void tst_data_point_types::width_of_each_main_type() {
    const QMap<int, int> widths{{1, 1},   {2, 2},   {3, 4},   {4, 8},    {5, 8},   {6, 8},
                                {7, 16},  {8, 16},  {9, 16},  {10, 24},  {11, 24}, {12, 32},
                                {13, 32}, {14, 32}, {15, 32}, {16, 112}, {17, 8},  {18, 8},
                                {19, 64}, {20, 8},  {29, 64}, {232, 24}, {251, 48}};
    for (const auto& type : knx::data_point_types()) {
        QCOMPARE(type.bits(), widths.value(type.main));
    }
}

QTEST_GUILESS_MAIN(tst_data_point_types)
#include "tst_data_point_types.moc"
