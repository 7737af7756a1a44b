#include "live/stale_names_t.h"

#include <QTest>

using database::live::stale_names_t;
using elements_t = std::set<QString>;

class tst_stale_names_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_name_is_taken_once_with_the_elements_that_know_it() {
        stale_names_t stale;
        stale.add("alice", {"e-1", "e-2"});
        stale.add("alice", {"e-2", "e-3"});
        QVERIFY(stale.contains("alice"));
        QCOMPARE(stale.rights(), 3);
        QVERIFY(stale.take("alice") == (elements_t{"e-1", "e-2", "e-3"}));
        QVERIFY(!stale.contains("alice"));
        QCOMPARE(stale.rights(), 0);
        QVERIFY(stale.take("alice") == elements_t());
    }

    void an_element_that_is_read_again_knows_no_name() {
        stale_names_t stale;
        stale.add("alice", {"e-1", "e-2"});
        stale.add("bob", {"e-1"});
        stale.renew("e-1");
        QCOMPARE(stale.rights(), 1);
        QVERIFY(stale.take("alice") == elements_t{"e-2"});
        QVERIFY(stale.contains("bob"));
        QVERIFY(stale.take("bob") == elements_t());
    }

    void what_is_too_much_may_be_known_by_any_element() {
        stale_names_t stale(3);
        stale.add("alice", {"e-1", "e-2"});
        stale.add("bob", {"e-1", "e-2"});
        QCOMPARE(stale.rights(), 2);
        QVERIFY(stale.contains("bob"));
        stale.renew("e-1");
        stale.renew("e-2");
        stale.add("bob", {"e-3"});
        QCOMPARE(stale.rights(), 0);
        QVERIFY(!stale.take("bob").has_value());
        QVERIFY(stale.take("alice") == elements_t());
        stale.add("bob", {"e-1", "e-2", "e-3"});
        QCOMPARE(stale.rights(), 3);
        stale.clear();
        QVERIFY(!stale.contains("bob"));
        QCOMPARE(stale.rights(), 0);
    }
};

QTEST_APPLESS_MAIN(tst_stale_names_t)
#include "tst_stale_names_t.moc"
