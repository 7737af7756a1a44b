#include <QTest>

#include "database/definition/type_brand_t.h"

using database::definition::type_brand_t;

class tst_type_brand_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_brand_is_found_by_its_name_in_any_case_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("brand");

        QTest::newRow("own") << QStringLiteral("Kelma") << QStringLiteral("Kelma");
        QTest::newRow("other") << QStringLiteral("Domivra") << QStringLiteral("Domivra");
        QTest::newRow("lower case") << QStringLiteral("lunora") << QStringLiteral("Lunora");
        QTest::newRow("upper case") << QStringLiteral("DOMIVRA") << QStringLiteral("Domivra");
        QTest::newRow("unknown") << QStringLiteral("unknown") << QStringLiteral("Kelma");
        QTest::newRow("part of a name") << QStringLiteral("Lun") << QStringLiteral("Kelma");
        QTest::newRow("empty") << QString() << QStringLiteral("Kelma");
    }

    void a_brand_is_found_by_its_name_in_any_case() {
        QFETCH(const QString, name);
        QFETCH(const QString, brand);
        QCOMPARE(type_brand_t::fromString(name).ToString(), brand);
    }

    void brands_are_copied_assigned_and_compared() {
        type_brand_t brand = type_brand_t::KELMA;
        QVERIFY(brand == type_brand_t::fromString(QStringLiteral("Kelma")));
        brand = type_brand_t::LUNORA;
        QVERIFY(brand != type_brand_t::KELMA);
        QCOMPARE(brand.ToString(), QStringLiteral("Lunora"));
    }
};

QTEST_GUILESS_MAIN(tst_type_brand_t)
#include "tst_type_brand_t.moc"
