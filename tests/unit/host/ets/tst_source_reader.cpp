#include "ets/source_reader.h"

#include <QTest>

#include "kit/ets_project.h"

using ets::read_source;

class tst_source_reader : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void kind_is_told_by_what_is_in_it_data() {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray address = kit::ets_address(2305, "Lamp");
        QTest::newRow("project") << kit::ets_project(kit::ets_addresses(address));
        QTest::newRow("XML") << QByteArray(
            "<GroupAddress-Export xmlns='http://knx.org/xml/ga-export/01'>"
            "<GroupAddress Name='Lamp' Address='1/1/1'/></GroupAddress-Export>");
        QTest::newRow("XML with a mark") << QByteArray(
            "\xef\xbb\xbf\r\n<GroupAddress-Export xmlns='http://knx.org/xml/ga-export/01'>"
            "<GroupAddress Name='Lamp' Address='1/1/1'/></GroupAddress-Export>");
        QTest::newRow("table") << QByteArray("Lamp;1/1/1\n");
    }
    void kind_is_told_by_what_is_in_it() {
        QFETCH(QByteArray, bytes);
        const auto read = read_source(bytes, "x", {});
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.groups[2305].name, "Lamp");
    }

    void failures_name_the_file_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("error");
        QTest::newRow("nothing") << QByteArray() << "x: It is empty.";
        QTest::newRow("zip") << kit::zip_of({{"a.txt", "a"}}) << "x: The zip holds no ETS project.";
        QTest::newRow("XML") << QByteArray("<a/>")
                             << "x: It is XML, but no list of group addresses that ETS exports.";
    }
    void failures_name_the_file() {
        QFETCH(QByteArray, bytes);
        QTEST(read_source(bytes, "x", {}).error, "error");
    }

    void a_project_without_addresses_is_told() {
        const auto read = read_source(kit::ets_project(""), "x", {});
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.notes, QStringList("There is no group address in x."));
    }
};

QTEST_GUILESS_MAIN(tst_source_reader)
#include "tst_source_reader.moc"
