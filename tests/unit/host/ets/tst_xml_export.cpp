#include "ets/xml_export.h"

#include <QTest>

using ets::read_xml_export;

namespace {

QByteArray exported(const QByteArray& _inside) {
    return "<?xml version=\"1.0\"?>\n"
           "<GroupAddress-Export xmlns=\"http://knx.org/xml/ga-export/01\">" +
           _inside + "</GroupAddress-Export>";
}

}  // namespace

class tst_xml_export : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void addresses_in_groups() {
        const auto read =
            read_xml_export(exported(R"(<GroupRange Name="Light"><GroupRange Name="Ground">
<GroupAddress Name="Mill lamp" Address="1/1/1" Description="by the door" DPTs="DPST-1-3 DPST-1-1"/>
</GroupRange><GroupAddress Name="Mill status" Address="1/1/2"/></GroupRange>)"),
                            {});
        QCOMPARE(read.error, QString());
        const ets::group_t lamp = read.value.groups[2305];
        QCOMPARE(lamp.name, "Mill lamp");
        QCOMPARE(lamp.description, "by the door");
        QCOMPARE(lamp.dpt, "1.001");
        QCOMPARE(lamp.ranges, (QStringList{"Light", "Ground"}));
        QCOMPARE(read.value.groups[2306].dpt, QString());
        QCOMPARE(read.value.groups[2306].ranges, QStringList{"Light"});
    }

    void style_is_that_of_the_addresses_data() {
        QTest::addColumn<QByteArray>("address");
        QTest::newRow("free") << QByteArray("2305");
        QTest::newRow("two levels") << QByteArray("1/257");
        QTest::newRow("three levels") << QByteArray("1/1/1");
    }
    void style_is_that_of_the_addresses() {
        QFETCH(QByteArray, address);
        const auto read =
            read_xml_export(exported("<GroupAddress Name='a' Address='" + address + "'/>"), {});
        QCOMPARE(read.value.address(2305), QString::fromLatin1(address));
    }

    void what_is_no_address_is_told() {
        const auto read = read_xml_export(
            exported("<GroupAddress Address='1/1/1'/><GroupAddress Address='1/1/1'/>"
                     "<GroupAddress Address='-1'/>"),
            {});
        QCOMPARE(read.value.groups.size(), 1);
        QCOMPARE(read.value.notes,
                 (QStringList{"1/1/1 is there more than once; the first one is taken.",
                              "\"-1\" is no group address and is left out."}));
    }

    void refused_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("other XML") << QByteArray("<svg/>")
                                   << "It is XML, but no list of group addresses that ETS exports.";
        QTest::newRow("cut off") << exported("").chopped(9)
                                 << "The export: line 2: Premature end of document.";
        QTest::newRow("entities")
            << QByteArray("<!DOCTYPE x [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><x>&b;</x>")
            << "The export: line 1: it has a document type, and with that may have entities.";
    }
    void refused() {
        QFETCH(QByteArray, text);
        QTEST(read_xml_export(text, {}).error, "error");
    }
};

QTEST_GUILESS_MAIN(tst_xml_export)
#include "tst_xml_export.moc"
