#include "store/overview_t.h"

#include <QTemporaryDir>
#include <QTest>

#include "installation/document_reader.h"
#include "kit/small_home.h"
#include "store/sqlite_store_t.h"
#include "store/stored_names.h"

using namespace database;
using namespace database::store;

class tst_overview_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        path = folder->filePath("installation.db");
        QVERIFY(store.open(path).is_ok());
        QVERIFY(store.replace(installation::read_document(kit::small_home_text(), "small").value)
                    .is_ok());
    }

    void users_come_with_the_number_of_their_grants() {
        const auto users = overview_t(store.connection()).users({});
        QCOMPARE(users.value.size(), 2);
        QCOMPARE(users.value[0].username, "alice");
        QCOMPARE(users.value[0].grants, 3);
        QCOMPARE(users.value[1].id, "u-bob");
        QCOMPARE(overview_t(store.connection()).users("alice").value.size(), 1);
        QVERIFY(overview_t(store.connection()).users("bob").value.isEmpty());
    }

    void grants_are_those_of_the_asked_for() {
        const auto rows = overview_t(store.connection()).grants({}, {"u-bob"}).value;
        QCOMPARE(rows.size(), 3);
        QCOMPARE(rows[0].id, "e-lamp");
        QCOMPARE(rows[0].bits, (QHash<QString, int>{{"u-bob", 1}}));
        QCOMPARE(rows[1].bits, (QHash<QString, int>()));
        QCOMPARE(rows[2].bits, (QHash<QString, int>{{"u-bob", 2}}));
    }

    void pages_end_and_go_on() {
        for (int i = 0; i <= overview_t::rows_at_once; ++i) {
            QVERIFY(store.connection()
                        .run("INSERT INTO elements (id, type) VALUES (?, 1)",
                             {QStringLiteral("f-%1").arg(i, 4, 10, QChar('0'))})
                        .is_ok());
        }
        overview_t overview(store.connection());
        QStringList all;
        for (auto page = overview.names(kind_t::element, {}); !page.value.isEmpty();
             page = overview.names(kind_t::element, page.value.constLast())) {
            QVERIFY(page.value.size() <= overview_t::rows_at_once);
            all += page.value;
        }
        QCOMPARE(all.size(), 3 + overview_t::rows_at_once + 1);
        QCOMPARE(all.first(), "e-lamp");
        QCOMPARE(all.last(), "f-0500");
        QCOMPARE(overview.grants({}, {}).value.size(), qsizetype(overview_t::rows_at_once));
        QCOMPARE(overview.longest_element().value, 7);
    }

    void access_is_looked_up_by_name_and_by_id() {
        overview_t overview(store.connection());
        for (const char* const user : {"alice", "u-alice"}) {
            const auto access = overview.access(user, "e-therm");
            QCOMPARE(access.error, QString());
            QCOMPARE(access.value.user, "alice");
            QCOMPARE(access.value.bits, 1);
            QCOMPARE(access.value.type, 17);
            QCOMPARE(access.value.topic, "installation/0001");
        }
        QCOMPARE(overview.access("bob", "e-night").value.bits, 0);
        QCOMPARE(overview.access("carol", "e-night").error, "There is no user carol.");
        QCOMPARE(overview.access("bob", "e-x").error, "There is no element e-x.");
    }

    void names_are_found_by_their_beginning() {
        QCOMPARE(stored_names(path, kind_t::item, "i-", 3),
                 (QStringList{"i-dim", "i-lamp", "i-set"}));
        QCOMPARE(stored_names(path, kind_t::item, "i-l", 9), QStringList("i-lamp"));
        QCOMPARE(stored_names(path, kind_t::user, "", 9), (QStringList{"alice", "bob"}));
        QCOMPARE(stored_names(path, kind_t::scenario, "x", 9), QStringList());
        QCOMPARE(stored_names(folder->filePath("none"), kind_t::item, "", 9), QStringList());
        QVERIFY(!QFile::exists(folder->filePath("none")));
    }

 private:
    std::unique_ptr<QTemporaryDir> folder;
    QString path;
    sqlite_store_t store;
};

QTEST_GUILESS_MAIN(tst_overview_t)
#include "tst_overview_t.moc"
