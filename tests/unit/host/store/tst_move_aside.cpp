#include "store/move_aside.h"

#include <QDir>
#include <QTest>

#include "kit/sample_installation.h"
#include "store/database_check.h"

using namespace database::store;

class tst_move_aside : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_damaged_database_makes_room_with_its_log() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("installation.db");
        for (const QString& name : {path, path + "-wal"}) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(5000, 'x')) > 0);
        }
        const auto moved = move_unusable_aside(path, 0);
        QCOMPARE(moved.error, QString());
        QVERIFY2(moved.value.startsWith(folder.filePath("installation.damaged-")),
                 qPrintable(moved.value));
        QVERIFY(QFile::exists(moved.value) && QFile::exists(moved.value + "-wal"));
        QVERIFY(!QFile::exists(path) && !QFile::exists(path + "-wal"));
    }

    void a_sound_one_stays() {
        const sample::file_t file;
        QCOMPARE(move_unusable_aside(file.path(), 0).error, QString());
        QCOMPARE(move_unusable_aside(file.path(), 0).value, QString());
        QVERIFY(holds_installation(file.path(), 0).value);
    }

    void one_that_is_not_there_stays_so() {
        const QTemporaryDir folder;
        const auto moved = move_unusable_aside(folder.filePath("installation.db"), 0);
        QVERIFY(moved.is_ok() && moved.value.isEmpty());
    }

    void one_in_use_stays() {
        const sample::file_t file;
        connection_t other;
        QVERIFY(other.open(file.path(), connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(other.run("PRAGMA locking_mode = EXCLUSIVE").is_ok());
        QVERIFY(other.run("UPDATE items SET value = '1'").is_ok());
        QVERIFY(
            move_unusable_aside(file.path(), 0).error.endsWith(" is in use by another program."));
        QVERIFY(QFile::exists(file.path()));
    }
};

QTEST_GUILESS_MAIN(tst_move_aside)
#include "tst_move_aside.moc"
