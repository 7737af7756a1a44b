#include "first_request_t.h"

#include <QTest>

#include "fakes/memory_database_t.h"
#include "live/write_gate_t.h"

using torlan::first_request_t;

class tst_first_request_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void it_is_somebody_s_who_may_read_and_write_a_switch() {
        fakes::memory_database_t db;
        fill(&db);
        db.grant("u-a", "e-lamp", 1);
        db.grant("u-a", "e-temperature", 3);
        db.grant("u-a", "e-unconnected", 3);
        db.grant("u-b", "e-lamp", 3);
        const auto request = find(db);
        QVERIFY(request);
        QCOMPARE(request->username, QStringLiteral("bob"));
        QCOMPARE(request->element, QStringLiteral("e-lamp"));
        QCOMPARE(request->function, QStringLiteral("execute"));
        QCOMPARE(request->value, QStringLiteral("1"));
    }

    void a_lamp_that_is_on_is_switched_off() {
        fakes::memory_database_t db;
        fill(&db);
        db.add_item("i-lamp", "1");
        db.grant("u-b", "e-lamp", 3);
        QCOMPARE(find(db)->value, QStringLiteral("0"));
    }

    void what_an_item_would_not_take_is_not_proposed() {
        fakes::memory_database_t db;
        fill(&db);
        db.grant("u-b", "e-lamp", 3);
        database::live::write_gate_t gate(db.get());
        gate.set_limits("i-lamp", {.writable = false});
        QVERIFY(!first_request_t::find(*db.get(), gate));
    }

    void without_such_a_user_there_is_none() {
        fakes::memory_database_t db;
        QVERIFY(!find(db));
        fill(&db);
        db.grant("u-b", "e-lamp", 2);
        QVERIFY(!find(db));
    }

    void the_lines_can_be_pasted() {
        const first_request_t request{"u-b", "bob", "e-lamp", "execute", "1"};
        QCOMPARE(request.text({"bin/torlanctl", "--data", "/my home"}, "it's $5"),
                 QString("torlan: try it in another terminal, the password of bob is "
                         "'it'\\''s $5':\n"
                         "  bin/torlanctl --data '/my home' watch --user bob\n"
                         "  bin/torlanctl --data '/my home' put e-lamp execute=1 --confirm "
                         "--user bob\n"));
    }

    void without_a_known_password_they_can_be_pasted_too() {
        const first_request_t request{"u-b", "bob", "e-lamp", "execute", "1"};
        QVERIFY(request.text({"torlanctl"}, {})
                    .startsWith("torlan: try it in another terminal, with the password of bob:\n"
                                "  torlanctl watch --user bob\n"));
    }

 private:
    static std::optional<first_request_t> find(fakes::memory_database_t& _db) {
        return first_request_t::find(*_db.get(), database::live::write_gate_t(_db.get()));
    }
    static void fill(fakes::memory_database_t* _db) {
        _db->add_item("i-lamp", "0");
        _db->add_item("i-temperature", "21.5");
        _db->add_element("e-lamp", "Lamp", 1, {{"execute", "i-lamp"}});
        _db->add_element("e-temperature", "Temperature", 5, {{"temperature", "i-temperature"}});
        _db->add_element("e-unconnected", "Socket", 4, {{"execute", QVariant()}});
        _db->add_user("u-a", "alice");
        _db->add_user("u-b", "bob");
    }
};

QTEST_GUILESS_MAIN(tst_first_request_t)
#include "tst_first_request_t.moc"
