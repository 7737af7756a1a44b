#include "ets/csv_export.h"

#include <QTest>

using ets::read_csv_export;

namespace {

struct table_t {
    const char* title;
    QByteArray text;
    knx::address_style_t style = knx::address_style_t::three_levels;
};

constexpr auto three = knx::address_style_t::three_levels;
constexpr auto two = knx::address_style_t::two_levels;
constexpr auto free_style = knx::address_style_t::free;

/// The same two addresses, 2305 and 2306, in every mix of columns.
const QList<table_t> tables{
    {"three and three",
     R"("Main","Middle","Sub","Main","Middle","Sub","Central","Unfiltered","Description","DatapointType","Security"
"Light","","","1","","","","","","","Auto"
"","Ground","","1","1","","","","","","Auto"
"","","Mill lamp","1","1","1","","","by the door","DPST-1-1","Auto"
"","","Mill status","1","1","2","","","","","Auto"
)",
     three},
    {"three and one",
     R"("Main","Middle","Sub","Address","Central","Unfiltered","Description","DatapointType","Security"
"Light","","","1/-/-","","","","","Auto"
"","Ground","","1/1/-","","","","","Auto"
"","","Mill lamp","1/1/1","","","by the door","DPST-1-1","Auto"
"","","Mill status","1/1/2","","","","","Auto"
)",
     three},
    {"one and three",
     R"("Group name","Main","Middle","Sub","Central","Unfiltered","Description","DatapointType","Security"
"Light","1","","","","","","","Auto"
"Ground","1","1","","","","","","Auto"
"Mill lamp","1","1","1","","","by the door","DPST-1-1","Auto"
"Mill status","1","1","2","","","","","Auto"
)",
     three},
    {"one and one",
     R"("Group name","Address","Central","Unfiltered","Description","DatapointType","Security"
"Light","1/-/-","","","","","Auto"
"Ground","1/1/-","","","","","Auto"
"Mill lamp","1/1/1","","","by the door","DPST-1-1","Auto"
"Mill status","1/1/2","","","","","Auto"
)",
     three},
    {"without a head", R"("Mill lamp","1/1/1","","","by the door","DPST-1-1","Auto"
"Mill status","1/1/2","","","","","Auto"
)",
     three},
    {"another language",
     R"("Gruppenname";"Adresse";"Zentral";"Unfiltriert";"Beschreibung";"DatapointType";"Security"
"Mill lamp";"1/1/1";"";"";"by the door";"DPST-1-1";"Auto"
"Mill status";"1/1/2";"";"";"";"";"Auto"
)",
     three},
    {"without quotation marks",
     "Mill lamp\t1/1/1\t\t\tby the door\tDPST-1-1\tAuto\r\n"
     "Mill status\t1/1/2\t\t\t\t\tAuto\r\n",
     three},
    {"two levels", R"("Light","1/-","","","","","Auto"
"Mill lamp","1/257","","","by the door","DPST-1-1","Auto"
"Mill status","1/258","","","","","Auto"
)",
     two},
    {"two levels apart", R"("Light","","1","","","","","","Auto"
"","Mill lamp","1","257","","","by the door","DPST-1-1","Auto"
"","Mill status","1","258","","","","","Auto"
)",
     two},
    {"two levels in three columns", R"("Light","","","1","","","","","","",""
"","","Mill lamp","1","","257","","","by the door","DPST-1-1",""
"","","Mill status","1","","258","","","","",""
)",
     two},
    {"free", R"("Mill lamp","2305","","","by the door","DPST-1-1","Auto"
"Mill status","2306","","","","","Auto"
)",
     free_style},
};

}  // namespace

class tst_csv_export : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_mix_of_columns_data() {
        QTest::addColumn<int>("place");
        for (int place = 0; place < tables.size(); ++place) {
            QTest::newRow(tables[place].title) << place;
        }
    }
    void every_mix_of_columns() {
        QFETCH(int, place);
        const auto read = read_csv_export(tables[place].text);
        QCOMPARE(read.error, QString());
        QVERIFY(read.value.style == tables[place].style);
        QCOMPARE(read.value.groups.keys(), (QList<quint16>{2305, 2306}));
        const ets::group_t lamp = read.value.groups[2305];
        QCOMPARE(lamp.name, "Mill lamp");
        QCOMPARE(lamp.description, "by the door");
        QCOMPARE(lamp.dpt, "1.001");
        QCOMPARE(read.value.groups[2306].name, "Mill status");
        QCOMPARE(read.value.groups[2306].dpt, QString());
        QCOMPARE(read.value.notes, QStringList());
    }

    void names_of_groups_of_addresses_are_kept() {
        const auto read = read_csv_export(tables[0].text);
        QCOMPARE(read.value.groups[2305].ranges, (QStringList{"Light", "Ground"}));
    }

    void cells_may_hold_everything() {
        const auto read = read_csv_export(
            "\"A \"\"big\"\", wide\nroom\",\"1/1/1\",\"\",\"\",\"x;y\",\"DPST-1-1\"\r\n"
            "\r\n"
            "\"B\",\"1/1/2\"\r\n");
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.groups[2305].name, "A \"big\", wide\nroom");
        QCOMPARE(read.value.groups[2305].description, "x;y");
        QCOMPARE(read.value.groups[2306].name, "B");
    }

    void encoding_is_found_out() {
        const auto read = read_csv_export(
            "\"K\xfc"
            "che\";\"1/1/1\"\r\n");
        QCOMPARE(read.value.groups[2305].name, "Küche");
    }

    void what_is_no_address_is_told_by_its_line() {
        const auto read = read_csv_export(
            "\"A\",\"1/1/1\"\n\"B\",\"32/0/1\"\n\"C\",\"1/1/2\"\n"
            "\"D\",\"1/1/1\"\n");
        QCOMPARE(read.value.groups.size(), 2);
        QCOMPARE(read.value.notes,
                 (QStringList{"Line 2 holds no group address: \"B 32/0/1\".",
                              "Line 4: 1/1/1 is there more than once; the first one is taken."}));
    }

    void refused_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        const QString other =
            "It is no ETS project and no list of group addresses that ETS exports.";
        QTest::newRow("prose") << QByteArray("Dear all,\nno table, sorry.\n") << other;
        QTest::newRow("another table") << QByteArray("a;b\n1;x\n2;y\n") << other;
        QTest::newRow("bytes") << QByteArray(
                                      "\x7f"
                                      "ELF\0\0\0\1\2\3",
                                      10)
                               << other;
        QTest::newRow("quotation mark without an end")
            << QByteArray("\"A\",\"1/1/1\"\n\"B,\n")
            << "It is no list of group addresses: line 2: a quotation mark is never closed.";
    }
    void refused() {
        QFETCH(QByteArray, text);
        QTEST(read_csv_export(text).error, "error");
    }

    void ten_thousand_rows_are_read_soon() {
        QByteArray text;
        for (int raw = 1; raw <= 10'000; ++raw) {
            text += "\"Lamp\",\"" + QByteArray::number(raw >> 11) + '/' +
                    QByteArray::number((raw >> 8) & 7) + '/' + QByteArray::number(raw & 255) +
                    "\",\"\",\"\",\"\",\"DPST-1-1\",\"Auto\"\n";
        }
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(read_csv_export(text).value.groups.size(), 10'000);
        QVERIFY2(timer.elapsed() < 20'000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(tst_csv_export)
#include "tst_csv_export.moc"
