#include "broker/plugin/wrong_passwords_t.h"

#include <QTest>

#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;
using namespace std::chrono_literals;

class tst_wrong_passwords_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void knows_what_was_added_and_nothing_else();
    void forgets_after_a_while();
    void another_life_of_the_account_is_another_matter();
};

void tst_wrong_passwords_t::knows_what_was_added_and_nothing_else() {
    wrong_passwords_t wrong;
    QVERIFY(!wrong.contains({}, 0, 0ms));
    wrong.add(digest_of(1), 7, 1s);
    QVERIFY(wrong.contains(digest_of(1), 7, 1s));
    digest_t same_place = digest_of(1);
    same_place.back() ^= 1;
    QVERIFY(!wrong.contains(same_place, 7, 1s));
    wrong.add(same_place, 7, 1s);
    QVERIFY(wrong.contains(same_place, 7, 1s));
    QVERIFY(!wrong.contains(digest_of(1), 7, 1s));
}

void tst_wrong_passwords_t::forgets_after_a_while() {
    wrong_passwords_t wrong;
    wrong.add(digest_of(1), 7, 1s);
    QVERIFY(wrong.contains(digest_of(1), 7, 61s - 1ms));
    QVERIFY(!wrong.contains(digest_of(1), 7, 61s));
}

void tst_wrong_passwords_t::another_life_of_the_account_is_another_matter() {
    wrong_passwords_t wrong;
    wrong.add(digest_of(1), 0, 1s);
    QVERIFY(wrong.contains(digest_of(1), 0, 1s));
    QVERIFY(!wrong.contains(digest_of(1), 8, 1s));
}

QTEST_GUILESS_MAIN(tst_wrong_passwords_t)
#include "tst_wrong_passwords_t.moc"
