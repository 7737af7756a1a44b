#include "live/realtime_writer_t.h"

#include <QSignalSpy>
#include <QTest>

#include "fakes/memory_database_t.h"
#include "kit/notifier_log_t.h"

using database::live::realtime_writer_t;

class tst_realtime_writer_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        memory = std::make_unique<fakes::memory_database_t>();
        memory->add_item("i-lamp", "0");
        memory->add_scenary("s-night", false);
        writer = std::make_unique<realtime_writer_t>(memory->get());
    }

    void a_written_value_is_stored_before_it_is_announced() {
        notifier_log_t log(memory->get());
        QString seen;
        log.at_signal = [this, &seen](const QString&) { seen = value(); };
        QVERIFY(writer->write_item("i-lamp", "1"));
        QCOMPARE(log.lines, QStringList("item i-lamp"));
        QCOMPARE(seen, "1");
        QCOMPARE(writer->unsaved_items(), std::set<QString>{"i-lamp"});
    }

    void a_scenario_is_announced_and_unsaved() {
        notifier_log_t log(memory->get());
        QVERIFY(writer->write_scenario("s-night", true));
        QCOMPARE(log.lines, QStringList("scenario s-night"));
        QVERIFY(memory->get()->getRealtime()->getScenary()->list("s-night")->getExecution());
        QCOMPARE(writer->unsaved_scenarios(), std::set<QString>{"s-night"});
    }

    void an_unchanged_value_is_announced_but_needs_no_save() {
        notifier_log_t log(memory->get());
        QSignalSpy unsaved(writer.get(), &realtime_writer_t::unsaved);
        QVERIFY(writer->write_item("i-lamp", "0"));
        QVERIFY(writer->write_scenario("s-night", false));
        QCOMPARE(log.lines, QStringList({"item i-lamp", "scenario s-night"}));
        QCOMPARE(unsaved.count(), 0);
        QVERIFY(writer->unsaved_items().empty());
    }

    void a_value_that_no_store_takes_is_cleaned() {
        QVERIFY(writer->write_item("i-lamp", QString("1") + QChar(0) + QString("2")));
        QCOMPARE(value(), "12");
    }

    void unknown_ids_are_refused_silently() {
        notifier_log_t log(memory->get());
        QVERIFY(!writer->write_item("i-none", "1"));
        QVERIFY(!writer->write_scenario("s-none", true));
        QCOMPARE(log.lines, QStringList());
    }

    void a_value_from_disk_is_not_announced_and_drops_the_unsaved_one() {
        writer->write_item("i-lamp", "1");
        notifier_log_t log(memory->get());
        QVERIFY(writer->take_item("i-lamp", "7"));
        QVERIFY(!writer->take_item("i-lamp", "7"));
        QCOMPARE(value(), "7");
        QCOMPARE(log.lines, QStringList());
        QVERIFY(writer->unsaved_items().empty());
    }

    void a_forgotten_item_is_not_saved_any_more() {
        writer->write_item("i-lamp", "1");
        writer->forget_item("i-lamp");
        QVERIFY(writer->unsaved_items().empty());
        QVERIFY(!writer->write_item("i-lamp", "2"));
    }

    void without_a_database_nothing_is_written() {
        memory.reset();
        QVERIFY(!writer->write_item("i-lamp", "1"));
        QVERIFY(!writer->write_scenario("s-night", true));
    }

 private:
    QString value() { return memory->get()->getRealtime()->getItems()->list("i-lamp")->getValue(); }

    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<realtime_writer_t> writer;
};

QTEST_GUILESS_MAIN(tst_realtime_writer_t)
#include "tst_realtime_writer_t.moc"
