#include "process/restored_folder_t.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using process::restored_folder_t;

/// Which files are where, whenever it is broken off.
class tst_restored_folder_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        put("installation.db", "old");
        put("installation.db-wal", "old log");
        put("settings.json", "old settings");
    }

    void prepared_files_count_from_the_commit_on() {
        restored_folder_t restored(folder->path());
        QVERIFY(restored.prepare().is_ok());
        put("restore.prepared/installation.db", "new");
        put("restore.prepared/settings.json", "new settings");
        QVERIFY(!restored.is_unfinished());
        QCOMPARE(restored.finish().error, QString());
        QCOMPARE(text("installation.db"), "old");
        QCOMPARE(restored.commit().error, QString());
        QVERIFY(restored.is_unfinished());
        QCOMPARE(restored.finish().error, QString());
        QVERIFY(!restored.is_unfinished());
        QCOMPARE(names(), (QStringList{"installation.db", "settings.json"}));
        QCOMPARE(text("installation.db"), "new");
        QCOMPARE(text("settings.json"), "new settings");
    }

    void broken_off_before_the_commit_leaves_the_old_state() {
        QVERIFY(restored_folder_t(folder->path()).prepare().is_ok());
        put("restore.prepared/installation.db", "new");
        restored_folder_t next(folder->path());
        QCOMPARE(next.finish().error, QString());
        QCOMPARE(text("installation.db"), "old");
        QCOMPARE(text("installation.db-wal"), "old log");
        // The next one begins with an empty folder.
        QCOMPARE(next.prepare().error, QString());
        QVERIFY(!QFile::exists(next.prepared("installation.db")));
    }

    /// What a kill behind each step of finish() leaves.
    void broken_off_after_the_commit_is_finished_data() {
        QTest::addColumn<int>("steps");
        for (int steps = 0; steps <= 3; ++steps) {
            QTest::addRow("%d steps", steps) << steps;
        }
    }
    void broken_off_after_the_commit_is_finished() {
        QFETCH(int, steps);
        QVERIFY(QDir(folder->path()).mkdir("restore.committed"));
        put(steps > 0 ? "settings.json" : "restore.committed/settings.json", "new settings");
        if (steps > 1) {
            QVERIFY(QFile::remove(folder->filePath("installation.db-wal")));
        }
        put(steps > 2 ? "installation.db" : "restore.committed/installation.db", "new");
        if (steps > 2) {
            put("installation.db-wal", "log of the new one");  // somebody opened it meanwhile
        }
        restored_folder_t restored(folder->path());
        QVERIFY(restored.is_unfinished());
        QCOMPARE(restored.finish().error, QString());
        QCOMPARE(text("installation.db"), "new");
        QCOMPARE(text("settings.json"), "new settings");
        QCOMPARE(text("installation.db-wal"), steps > 2 ? "log of the new one" : "");
        QVERIFY(!QFile::exists(folder->filePath("restore.committed")));
    }

    void settings_that_are_not_part_of_it_stay() {
        QVERIFY(QDir(folder->path()).mkdir("restore.committed"));
        put("restore.committed/installation.db", "new");
        QCOMPARE(restored_folder_t(folder->path()).finish().error, QString());
        QCOMPARE(text("settings.json"), "old settings");
    }

 private:
    void put(const char* _name, const char* _text) const {
        QFile file(folder->filePath(_name));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(_text);
    }
    QString text(const char* _name) const {
        QFile file(folder->filePath(_name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    QStringList names() const {
        return QDir(folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_restored_folder_t)
#include "tst_restored_folder_t.moc"
