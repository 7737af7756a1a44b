#include "live/write_gate_t.h"

#include <QTest>

#include "fakes/memory_database_t.h"

using database::live::write_gate_t;

class tst_write_gate_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        lines.clear();
        gate.reset();
        memory = std::make_unique<fakes::memory_database_t>();
        memory->add_item("i-lamp", "0");
        memory->add_item("i-win", "0");
        gate = std::make_unique<write_gate_t>(memory->get());
        connect(gate.get(), &write_gate_t::item_asked, this,
                [this](const QString& _id, const QString& _value) { lines += _id + "=" + _value; });
        connect(gate.get(), &write_gate_t::item_refused, this,
                [this](const QString& _id, const QString& _value, const QString& _reason) {
                    lines += _id + "=" + _value + " refused: " + _reason;
                });
    }

    void an_item_without_limits_takes_everything() {
        ask("i-lamp", "3.5");
        ask("i-lamp", "eco");
        QCOMPARE(lines, QStringList({"i-lamp=3.5", "i-lamp=eco"}));
    }

    void what_an_item_does_not_take_goes_no_further() {
        gate->set_limits("i-win", {.writable = false});
        gate->set_limits("i-lamp", {true, 0, 1, 1});
        ask("i-win", "1");
        ask("i-lamp", "2");
        ask("i-lamp", "1");
        QCOMPARE(lines, QStringList({"i-win=1 refused: it is not writable",
                                     "i-lamp=2 refused: it is above 1", "i-lamp=1"}));
    }

    void limits_count_that_stand_when_the_request_is_handled() {
        memory->data()->getItems()->list("i-win")->requestSetValue("1");
        QCOMPARE(lines, QStringList());
        gate->set_limits("i-win", {.writable = false});
        QCoreApplication::processEvents();
        QCOMPARE(lines, QStringList("i-win=1 refused: it is not writable"));
    }

    void limits_that_are_taken_away_bind_no_longer() {
        for (const std::function<void()>& take_away :
             {std::function<void()>([this] { gate->forget("i-win"); }),
              std::function<void()>([this] { gate->clear(); }),
              std::function<void()>([this] { gate->set_limits("i-win", {}); })}) {
            lines.clear();
            gate->set_limits("i-win", {.writable = false});
            take_away();
            ask("i-win", "1");
            QCOMPARE(lines, QStringList("i-win=1"));
        }
    }

 private:
    void ask(const QString& _id, const QString& _value) {
        memory->data()->getItems()->list(_id)->requestSetValue(_value);
        QCoreApplication::processEvents();
    }

    QStringList lines;
    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<write_gate_t> gate;
};

QTEST_GUILESS_MAIN(tst_write_gate_t)
#include "tst_write_gate_t.moc"
