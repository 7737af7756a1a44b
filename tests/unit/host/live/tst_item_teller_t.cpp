#include "live/item_teller_t.h"

#include <QSignalSpy>
#include <QTest>

#include "fakes/memory_database_t.h"
#include "kit/notifier_log_t.h"

using namespace database::live;

/// An installation in which two items that wait are more than drivers should have to do.
class tst_item_teller_t : public QObject {
    Q_OBJECT

    static constexpr int elements = 9'000;

 private Q_SLOTS:
    void init() {
        memory = std::make_unique<fakes::memory_database_t>();
        for (int index = 0; index < elements; ++index) {
            const QString item = index < 100 ? "i-all" : QStringLiteral("i-%1").arg(index);
            memory->add_element(QStringLiteral("e-%1").arg(index), "Lamp", 1, {{"execute", item}});
        }
        teller = std::make_unique<item_teller_t>(memory->get());
        items = std::make_unique<QSignalSpy>(teller->item_portions(), &portions_t::announced);
        shown = std::make_unique<QSignalSpy>(teller->element_portions(), &portions_t::announced);
        log = std::make_unique<notifier_log_t>(memory->get());
    }

    void what_drivers_keep_up_with_is_told_as_items() {
        for (const char* const id : {"i-200", "i-201", "i-202"}) {
            teller->add({id});
            teller->item_portions()->taken();
        }
        QCOMPARE(log->lines, QStringList({"item i-200", "item i-201", "item i-202"}));
        QVERIFY(!teller->element_portions()->is_busy());
    }

    void what_waits_is_told_to_those_that_show_it() {
        teller->add({"i-200", "i-201", "i-202", "i-203", "i-none"});
        QCOMPARE(log->lines.size(), 4);
        QCOMPARE(log->lines.first(), "item i-200");
        QCOMPARE(log->lines.mid(1),
                 QStringList({"element e-201", "element e-202", "element e-203"}));
        QCOMPARE(items->size(), 2);
        QCOMPARE(shown->size(), 1);
    }

    void an_item_that_waits_is_told_once() {
        teller->add({"i-200"});
        teller->add({"i-201"});
        for (int time = 0; time < 100; ++time) {
            teller->add({"i-202"});
            teller->add({"i-203"});
        }
        QCOMPARE(log->lines, QStringList({"item i-200", "item i-201"}));
        teller->item_portions()->taken();
        QCOMPARE(log->lines.mid(2), QStringList({"element e-202", "element e-203"}));
    }

    void an_item_that_many_elements_show_stays_an_item() {
        teller->add({"i-200", "i-all", "i-202"});
        QCOMPARE(log->lines, QStringList({"item i-200", "item i-all", "element e-202"}));
    }

    void nobody_overtakes_elements_that_wait() {
        QStringList ids;
        for (int index = 200; index < 400; ++index) {
            ids += QStringLiteral("i-%1").arg(index);
        }
        teller->add(ids);
        take_items();
        QVERIFY(teller->element_portions()->is_waiting());
        teller->add({"i-200", "i-399"});
        take_items();
        QCOMPARE(log->lines.filter("item "), QStringList{"item i-200"});
        while (teller->element_portions()->is_busy()) {
            teller->element_portions()->taken();
        }
        QCOMPARE(log->lines.last(), "element e-200");
        QCOMPARE(log->lines.size(), 201);
        teller->add({"i-200"});
        QCOMPARE(log->lines.last(), "item i-200");
    }

    void without_a_database_nobody_is_told() {
        teller->add({"i-200", "i-201", "i-202"});
        memory.reset();
        const qsizetype before = log->lines.size();
        teller->add({"i-203", "i-204", "i-205"});
        take_items();
        QCOMPARE(log->lines.size(), before);
    }

 private:
    void take_items() {
        while (teller->item_portions()->is_busy()) {
            teller->item_portions()->taken();
        }
    }

    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<item_teller_t> teller;
    std::unique_ptr<QSignalSpy> items;
    std::unique_ptr<QSignalSpy> shown;
    std::unique_ptr<notifier_log_t> log;
};

QTEST_GUILESS_MAIN(tst_item_teller_t)
#include "tst_item_teller_t.moc"
