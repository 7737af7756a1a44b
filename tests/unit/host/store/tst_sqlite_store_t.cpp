#include "store/sqlite_store_t.h"

#include <QTest>
#include <limits>

#include "kit/sample_installation.h"

using namespace database::store;
using database::installation::installation_t;

class tst_sqlite_store_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_was_written_is_read_back() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        const installation_t whole = store.read().value;
        QCOMPARE(whole.elements, sample::installation().elements);
        QCOMPARE(whole.permissions, sample::installation().permissions);
        QVERIFY(whole == sample::installation());
        QVERIFY(whole.elements["e-lamp"].functions["spare"].isNull());
    }

    void flags_keep_their_sign_and_their_top_bit() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        installation_t written = sample::installation();
        const QMap<QString, qint32> flags{{"e-least", std::numeric_limits<qint32>::min()},
                                          {"e-minus", -1},
                                          {"e-most", std::numeric_limits<qint32>::max()}};
        for (auto it = flags.cbegin(); it != flags.cend(); ++it) {
            written.elements[it.key()] = {"Flags", 1, it.value(), {}, {}, {}};
        }
        QVERIFY(store.replace(written).is_ok());
        const installation_t whole = store.read().value;
        for (auto it = flags.cbegin(); it != flags.cend(); ++it) {
            QCOMPARE(whole.elements.value(it.key()).flags, it.value());
        }
    }

    void a_replacement_leaves_nothing_of_the_old() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        installation_t small;
        small.topic = "installation/0002";
        small.items = {{"i-only", {"7", {false, -1, 1.5, 0.1}}}};
        QVERIFY(store.replace(small).is_ok());
        const installation_t whole = store.read().value;
        QVERIFY(whole == small);
    }

    void a_replacement_is_one_bulk_row_after_the_rows_of_others() {
        const sample::file_t file;
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write(
            {"DELETE FROM changes", "UPDATE items SET value = '1' WHERE id = 'i-lamp'"}));
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        QVERIFY(store.replace(sample::installation()).is_ok());
        QCOMPARE(other.read("SELECT group_concat(tab || ' ' || key) FROM changes"),
                 "items i-lamp,bulk ");
    }

    void a_replacement_that_breaks_off_leaves_everything_as_it_was() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        installation_t broken = sample::installation();
        broken.permissions["u-nobody"]["e-lamp"] = 1;
        const base::result_t result = store.replace(broken);
        QVERIFY2(result.error.contains("FOREIGN KEY"), qPrintable(result.error));
        const installation_t whole = store.read().value;
        QVERIFY(whole == sample::installation());
        sample::foreign_writer_t other(file.path());
        QCOMPARE(other.read("SELECT count(*) FROM changes"), "1");
    }

    void a_failed_read_is_told() {
        sqlite_store_t closed;
        QVERIFY(!closed.read().is_ok());
    }
};

QTEST_GUILESS_MAIN(tst_sqlite_store_t)
#include "tst_sqlite_store_t.moc"
