#include "system/rights_matrix/expected.h"

#include <QTest>

#include "system/rights_matrix/change_t.h"

using namespace matrix;

Q_DECLARE_METATYPE(matrix::path_t)

/// The table that says what is to come of each attempt, by what its readers rely on.
class tst_expected : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_path_has_its_own_row();
    void only_a_grant_allows_data() { each_path(); }
    void only_a_grant_allows();
    void what_reads_needs_read_and_what_writes_needs_write_data();
    void what_reads_needs_read_and_what_writes_needs_write();
    void nothing_is_for_others_whatever_a_user_may_do_data();
    void nothing_is_for_others_whatever_a_user_may_do();
    void hidden_elements_are_as_if_not_granted_data() { each_path(); }
    void hidden_elements_are_as_if_not_granted();
    void former_protocols_have_no_word_for_a_refused_message();
    void a_change_leaves_less_than_before();

 private:
    static void each_path() {
        QTest::addColumn<path_t>("path");
        for (int index = 0; index < path_count; ++index) {
            QTest::newRow(name_of(path_t(index))) << path_t(index);
        }
    }
    static bool allows(right_t _right, path_t _path) {
        return expected(_right, _path, false, 5) == outcome_t::allowed;
    }
};

void tst_expected::every_path_has_its_own_row() {
    QSet<QString> names;
    for (int index = 0; index < path_count; ++index) {
        names.insert(name_of(path_t(index)));
    }
    QCOMPARE(names.size(), path_count);
}

void tst_expected::only_a_grant_allows() {
    QFETCH(path_t, path);
    for (const right_t right :
         {right_t::deny, right_t::unlisted, right_t::removed, right_t::unknown}) {
        QVERIFY2(!allows(right, path), name_of(right));
    }
}

void tst_expected::what_reads_needs_read_and_what_writes_needs_write_data() {
    QTest::addColumn<path_t>("path");
    QTest::addColumn<bool>("reads");
    for (const path_t path : {path_t::read_one, path_t::read_all, path_t::filtered_read,
                              path_t::own_answers, path_t::retained_state, path_t::pushed_state,
                              path_t::own_group, path_t::resumed_session, path_t::old_connection}) {
        QTest::newRow(name_of(path)) << path << true;
    }
    for (const path_t path :
         {path_t::write_one, path_t::write_many, path_t::will, path_t::delayed_will}) {
        QTest::newRow(name_of(path)) << path << false;
    }
}

void tst_expected::what_reads_needs_read_and_what_writes_needs_write() {
    QFETCH(path_t, path);
    QFETCH(bool, reads);
    QVERIFY(allows(right_t::readwrite, path));
    QCOMPARE(allows(right_t::read, path), reads);
    QCOMPARE(allows(right_t::write, path), !reads);
}

void tst_expected::nothing_is_for_others_whatever_a_user_may_do_data() {
    QTest::addColumn<path_t>("path");
    for (const path_t path :
         {path_t::everything, path_t::any_user, path_t::foreign_group, path_t::foreign_state,
          path_t::foreign_answers, path_t::foreign_request, path_t::forged_state,
          path_t::forged_elsewhere, path_t::retained_request}) {
        QTest::newRow(name_of(path)) << path;
    }
}

void tst_expected::nothing_is_for_others_whatever_a_user_may_do() {
    QFETCH(path_t, path);
    for (int right = 0; right < right_count; ++right) {
        QCOMPARE(expected(right_t(right), path, false, 5), outcome_t::refused);
    }
}

void tst_expected::hidden_elements_are_as_if_not_granted() {
    QFETCH(path_t, path);
    for (const right_t right : {right_t::readwrite, right_t::read, right_t::write}) {
        QCOMPARE(expected(right, path, true, 5), expected(right_t::unlisted, path, false, 5));
    }
    QCOMPARE(expected(right_t::removed, path, true, 5), expected(right_t::removed, path, false, 5));
}

void tst_expected::former_protocols_have_no_word_for_a_refused_message() {
    for (const int version : {3, 4}) {
        QCOMPARE(expected(right_t::deny, path_t::forged_state, false, version), outcome_t::silent);
        QCOMPARE(expected(right_t::deny, path_t::everything, false, version),
                 version == 3 ? outcome_t::silent : outcome_t::refused);
        QCOMPARE(expected(right_t::removed, path_t::forged_state, false, version),
                 outcome_t::refused);
    }
}

void tst_expected::a_change_leaves_less_than_before() {
    for (int change = 0; change < change_count; ++change) {
        const right_t right = right_after(change_t(change));
        QVERIFY2(!allows(right, path_t::read_one) || !allows(right, path_t::write_one),
                 name_of(change_t(change)));
    }
    QCOMPARE(right_after(change_t::read_only), right_t::read);
    QCOMPARE(right_after(change_t::write_only), right_t::write);
    QCOMPARE(right_after(change_t::recreated), right_t::unlisted);
}

QTEST_APPLESS_MAIN(tst_expected)
#include "tst_expected.moc"
