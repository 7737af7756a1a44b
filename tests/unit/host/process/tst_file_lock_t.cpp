#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "kit/lock_holder.h"
#include "process/file_lock_t.h"
#include "process/holder_text.h"

using namespace process;
using state_t = file_lock_t::state_t;

class tst_file_lock_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        path = folder->filePath("lock");
    }

    void free_one_is_taken_and_its_owners_only() {
        file_lock_t lock(path);
        QCOMPARE(lock.look(), state_t::free);
        QVERIFY(!QFile::exists(path));
        QCOMPARE(lock.take(), state_t::ours);
        QCOMPARE(lock.look(), state_t::ours);
        QCOMPARE(lock.take(), state_t::ours);
        struct stat status = {};
        QCOMPARE(::stat(qPrintable(path), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0600));
    }

    void holder_is_named() {
        const kit::lock_holder_t other(hold());
        QVERIFY(other.is_ready);
        file_lock_t lock(path);
        QCOMPARE(lock.take(), state_t::held);
        QCOMPARE(lock.holder(), qint64(other.process));
        QCOMPARE(lock.look(), state_t::held);
        QCOMPARE(holder_text(lock), QString("process %1 (%2)").arg(other.process).arg(comm()));
    }

    void look_of_its_owner_does_not_let_go_of_it() {
        file_lock_t lock(path);
        QCOMPARE(lock.take(), state_t::ours);
        QCOMPARE(lock.look(), state_t::ours);
        QVERIFY(is_held_for_others());
        lock.release();
        QVERIFY(!is_held_for_others());
    }

    void killed_holder_leaves_it_free() {
        {
            const kit::lock_holder_t other(hold());
            QVERIFY(other.is_ready);
        }
        QCOMPARE(file_lock_t(path).take(), state_t::ours);
    }

    // As one that a container's former process 24 has left, or a copied folder brings.
    void what_the_file_says_does_not_matter() {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::number(QCoreApplication::applicationPid()) + "\nprogram\nmachine\n");
        file.close();
        QCOMPARE(file_lock_t(path).take(), state_t::ours);
    }

    void what_is_no_plain_file_fails() {
        QVERIFY(QFile::link(folder->filePath("elsewhere"), path));
        file_lock_t lock(path);
        QCOMPARE(lock.take(), state_t::failed);
        QVERIFY(!QFile::exists(folder->filePath("elsewhere")));
        QCOMPARE(::mkfifo(qPrintable(folder->filePath("pipe")), 0600), 0);
        QCOMPARE(file_lock_t(folder->filePath("pipe")).take(), state_t::failed);
        QCOMPARE(file_lock_t(folder->filePath("none/lock")).take(), state_t::failed);
    }

    void holder_is_asked_to_end() {
        kit::lock_holder_t other(hold());
        QVERIFY(other.is_ready);
        file_lock_t lock(path);
        QVERIFY(lock.end_holder(std::chrono::seconds(20)));
        QCOMPARE(other.ending(), SIGTERM);
        QCOMPARE(lock.take(), state_t::ours);
    }

    void deaf_holder_is_killed() {
        kit::lock_holder_t other(hold(), true);
        QVERIFY(other.is_ready);
        QVERIFY(file_lock_t(path).end_holder(std::chrono::milliseconds(50)));
        QCOMPARE(other.ending(), SIGKILL);
    }

    void stopped_holder_is_ended() {
        kit::lock_holder_t other(hold());
        QVERIFY(other.is_ready);
        QCOMPARE(::kill(other.process, SIGSTOP), 0);
        QVERIFY(file_lock_t(path).end_holder(std::chrono::seconds(20)));
        QCOMPARE(other.ending(), SIGTERM);
    }

    void nobody_is_ended_where_nobody_holds_it() {
        QVERIFY(file_lock_t(path).end_holder(std::chrono::milliseconds(0)));
        file_lock_t ours(path);
        QCOMPARE(ours.take(), state_t::ours);
        QVERIFY(!ours.end_holder(std::chrono::milliseconds(0)));
    }

 private:
    std::function<void()> hold() const {
        return [this]() { (new file_lock_t(path))->take(); };
    }
    bool is_held_for_others() const {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(file_lock_t(path).look() == state_t::held ? 1 : 0);
        }
        int status = 0;
        return ::waitpid(child, &status, 0) == child && WEXITSTATUS(status) == 1;
    }
    static QString comm() {
        QFile file("/proc/self/comm");
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll().trimmed())
                                              : QString();
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString path;
};

QTEST_GUILESS_MAIN(tst_file_lock_t)
#include "tst_file_lock_t.moc"
