// What is left of acknowledged changes when the power goes.
#include <QTemporaryDir>
#include <QTest>

#include "kit/recorded_disk.h"
#include "kit/sample_installation.h"
#include "store/open_database.h"
#include "store/store_editor_t.h"

using namespace database::store;
using database::installation::installation_t;

/// A change was acknowledged when these many calls had been made, and the installation was this.
struct promise_t {
    qsizetype calls;
    installation_t state;
};

class tst_power_cuts : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() {
        folder = std::make_unique<QTemporaryDir>();
        recorded_disk::root = folder->path();
        act();
        recorded_disk::root.clear();
        calls = recorded_disk::calls;
        recorded_disk::root = folder->path();
        QVERIFY2(calls.size() > 100, qPrintable(QString::number(calls.size())));
        QVERIFY(promises.size() > 20);
    }
    void cleanupTestCase() { recorded_disk::root.clear(); }

    void nothing_acknowledged_is_lost() {
        std::mt19937 random(20260131);
        recorded_disk::disk_t disk;
        const QString root = std::exchange(recorded_disk::root, QString());
        for (qsizetype i = 0; i < calls.size(); ++i) {
            recorded_disk::root = root;
            disk.see(calls.at(i));
            const QTemporaryDir left;
            disk.leave(left.path(), random);
            recorded_disk::root.clear();
            const QString wrong = broken_promise(left.filePath("installation.db"), i + 1);
            QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("after call %1 of %2: %3")
                                                     .arg(i + 1)
                                                     .arg(calls.size())
                                                     .arg(wrong)));
        }
        recorded_disk::root = root;
    }

 private:
    /// As the server and torlanctl do it: one holds the database open, the other comes and goes.
    void act() {
        const QString path = folder->filePath("installation.db");
        sqlite_store_t importer;
        QCOMPARE(importer.open(path).error, QString());
        QCOMPARE(importer.replace(sample::installation()).error, QString());
        promise(&importer);
        for (int i = 0; i < 8; ++i) {
            sqlite_store_t store;
            QCOMPARE(store.open(path).error, QString());
            store_editor_t editor(store.connection());
            const QString user = QStringLiteral("user-%1").arg(i);
            QCOMPARE(editor.set_item("i-lamp", QString::number(i)).error, QString());
            promise(&importer);
            QCOMPARE(editor.grant("bob", "e-lamp", i % 4).error, QString());
            promise(&importer);
            QCOMPARE(editor.add_user(user, sample::password_hash(u'a')).error, QString());
            promise(&importer);
            QCOMPARE(editor.remove_user(user).error, QString());
            promise(&importer);
        }
    }

    void promise(sqlite_store_t* _store) {
        promises.append({recorded_disk::calls.size(), _store->read().value});
    }

    /// Empty: the file holds what was acknowledged last, or what was under way.
    QString broken_promise(const QString& _path, qsizetype _calls) const {
        qsizetype kept = -1;
        for (qsizetype i = 0; i < promises.size() && promises.at(i).calls <= _calls; ++i) {
            kept = i;
        }
        const auto there = holds_installation_of(_path);
        if (!there.is_ok()) {
            return there.error;
        }
        for (qsizetype i = qMax<qsizetype>(kept, 0); i < qMin(kept + 2, promises.size()); ++i) {
            if (there.value == promises.at(i).state) {
                return {};
            }
        }
        return kept < 0 && there.value == installation_t()
                   ? QString()
                   : QStringLiteral("promise %1 is lost").arg(kept);
    }

    static base::result_of_t<installation_t> holds_installation_of(const QString& _path) {
        sqlite_store_t store;
        const base::result_t opened = store.open(_path);
        if (!opened.is_ok()) {
            return opened;
        }
        return store.read();
    }

    std::unique_ptr<QTemporaryDir> folder;
    QList<recorded_disk::call_t> calls;
    QList<promise_t> promises;
};

QTEST_GUILESS_MAIN(tst_power_cuts)
#include "tst_power_cuts.moc"
