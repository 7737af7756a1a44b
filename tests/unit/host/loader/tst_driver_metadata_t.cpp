#include <QTest>

#include "loader/driver_metadata_t.h"

using loader::driver_metadata_t;

class tst_driver_metadata_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void interface_class_and_object_are_read() {
        const auto data = driver_metadata_t::parse(header() + map());
        QVERIFY(data);
        QCOMPARE(data->interface, QStringLiteral("one."));
        QCOMPARE(data->class_name, QStringLiteral("thing"));
        QCOMPARE(data->meta_data.value(QLatin1String("type")).toString(), QStringLiteral("TP"));
    }

    void label_of_another_build_or_newer_qt_does_not_matter_data() {
        QTest::addColumn<QByteArray>("label");
        QTest::newRow("Qt 6.5 release") << QByteArray::fromHex("01060500");
        QTest::newRow("Qt 6.99") << QByteArray::fromHex("01066300");
        QTest::newRow("debug, another processor level") << QByteArray::fromHex("01060583");
    }
    void label_of_another_build_or_newer_qt_does_not_matter() {
        QFETCH(QByteArray, label);
        QVERIFY(driver_metadata_t::parse(label + map()));
    }

    void bytes_after_the_map_are_padding() {
        QVERIFY(driver_metadata_t::parse(header() + map() + QByteArray(4, '\0')));
    }

    void what_is_not_understood_gives_nothing_data() {
        QTest::addColumn<QByteArray>("descriptor");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("header only") << header();
        QTest::newRow("unknown format") << QByteArray::fromHex("02060500") + map();
        QTest::newRow("Qt 5") << QByteArray::fromHex("01050f00") + map();
        QTest::newRow("map cut off") << header() + map().chopped(1);
        QTest::newRow("no map") << header() + QByteArray::fromHex("646f6e652e");
        QTest::newRow("no interface") << header() + QByteArray::fromHex("bf03657468696e67ff");
        QTest::newRow("interface is a number") << header() + QByteArray::fromHex("bf0207ff");
        QTest::newRow("text of 4 GB") << header() + QByteArray::fromHex("bf027afffffff061ff");
        QTest::newRow("very deep") << header() + QByteArray(100000, '\x81');
    }
    void what_is_not_understood_gives_nothing() {
        QFETCH(QByteArray, descriptor);
        QVERIFY(!driver_metadata_t::parse(descriptor));
    }

 private:
    static QByteArray header() { return QByteArray::fromHex("01060500"); }
    // {2: "one.", 3: "thing", 4: {"type": "TP"}}
    static QByteArray map() {
        return QByteArray::fromHex("bf02646f6e652e03657468696e6704a16474797065625450ff");
    }
};

QTEST_GUILESS_MAIN(tst_driver_metadata_t)
#include "tst_driver_metadata_t.moc"
