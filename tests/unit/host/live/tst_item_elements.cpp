#include "live/item_elements.h"

#include <QTest>

#include "fakes/memory_database_t.h"

using database::live::elements_by_item;
using found_t = QHash<QString, QStringList>;

class tst_item_elements : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void elements_stand_under_what_they_show_data() {
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<found_t>("found");

        QTest::newRow("none") << QStringList() << found_t();
        QTest::newRow("one function of two") << QStringList{"i-a"} << found_t{{"i-a", {"e-ab"}}};
        QTest::newRow("several elements")
            << QStringList{"i-b"} << found_t{{"i-b", {"e-ab", "e-b"}}};
        QTest::newRow("of a thermostat") << QStringList{"i-mode"} << found_t{{"i-mode", {"e-t"}}};
        QTest::newRow("its temperature") << QStringList{"i-is"} << found_t{{"i-is", {"e-t"}}};
        QTest::newRow("its window") << QStringList{"i-win"} << found_t{{"i-win", {"e-t"}}};
        QTest::newRow("shown by none") << QStringList{"i-none"} << found_t();
        QTest::newRow("several items") << QStringList{"i-mode", "i-none", "i-a"}
                                       << found_t{{"i-a", {"e-ab"}}, {"i-mode", {"e-t"}}};
    }
    void elements_stand_under_what_they_show() {
        QFETCH(QStringList, items);
        fakes::memory_database_t memory;
        memory.add_thermostat("t", {{"mode", "i-mode"}}, "i-is", "i-win");
        memory.add_element("e-ab", "AB", 1, {{"execute", "i-a"}, {"status", "i-b"}});
        memory.add_element("e-b", "B", 1, {{"execute", "i-b"}});
        memory.add_thermo_element("e-t", "T", "t");
        memory.add_thermo_element("e-lost", "Lost", "t-none");
        QTEST(elements_by_item(*memory.get(), items), "found");
    }
};

QTEST_GUILESS_MAIN(tst_item_elements)
#include "tst_item_elements.moc"
