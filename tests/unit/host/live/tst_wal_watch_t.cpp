#include "live/wal_watch_t.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using database::live::wal_watch_t;

class tst_wal_watch_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_write_to_the_log_wakes() {
        QVERIFY(append());
        wal_watch_t watch(path(), never);
        QSignalSpy woken(&watch, &wal_watch_t::woken);
        QVERIFY(append());
        QVERIFY(woken.wait());
    }

    void it_looks_again_once_the_commit_has_settled() {
        QVERIFY(append());
        wal_watch_t watch(path(), never);
        QSignalSpy woken(&watch, &wal_watch_t::woken);
        QVERIFY(append());
        QVERIFY(woken.wait());
        const qsizetype before = woken.count();
        QTRY_VERIFY(woken.count() > before);
    }

    void the_poll_wakes_without_a_log() {
        wal_watch_t watch(path() + "none", 1);
        QSignalSpy woken(&watch, &wal_watch_t::woken);
        QVERIFY(woken.wait());
    }

    void a_replaced_log_is_watched_again() {
        QVERIFY(append());
        wal_watch_t watch(path(), 10);
        QSignalSpy woken(&watch, &wal_watch_t::woken);
        QVERIFY(QFile::remove(path() + "-wal"));
        QVERIFY(woken.wait());
        QVERIFY(append());
        const auto watched = [&watch] {
            const auto* watcher = watch.findChild<QFileSystemWatcher*>();
            return watcher != nullptr && !watcher->files().isEmpty();
        };
        QTRY_VERIFY(watched());
    }

 private:
    static constexpr int never = 1000000;

    QString path() { return folder.filePath("installation.db"); }
    bool append() {
        QFile log(path() + "-wal");
        return log.open(QIODevice::Append) && log.write("x") == 1;
    }

    QTemporaryDir folder;
};

QTEST_GUILESS_MAIN(tst_wal_watch_t)
#include "tst_wal_watch_t.moc"
