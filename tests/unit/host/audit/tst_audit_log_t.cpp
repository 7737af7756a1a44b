#include "audit/audit_log_t.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <atomic>
#include <ctime>
#include <semaphore>

#include "audit/audit_reader_t.h"
#include "audit/line_text.h"

using audit::audit_log_t;
using audit::entry_t;

namespace {

entry_t made(const QString& _user, const QString& _element) {
    entry_t entry;
    entry.time = 1'795'327'842'123;
    entry.user = _user;
    entry.operation = "write";
    entry.element = _element;
    entry.result = "202";
    return entry;
}

/// That this thread has used.
double processor_us() {
    timespec used = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return double(used.tv_sec) * 1e6 + double(used.tv_nsec) / 1e3;
}

}  // namespace

class tst_audit_log_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        settings = {};
        settings.file = {folder->filePath("logs"), "audit"};
        told.clear();
        settings.tell = [this](const QString& _sentence) {
            const std::lock_guard held(mutex);
            told.append(_sentence);
        };
    }

    void what_is_noted_is_written_at_once() {
        const auto log = open();
        log->note(made("alice", "e-lamp"));
        QTRY_COMPARE(entries().size(), 1);
        QCOMPARE(entries()[0].user, QString("alice"));
    }

    void what_follows_soon_is_written_together() {
        settings.pause = std::chrono::hours(1);
        settings.waiting.of_user = 40;
        auto log = open();
        log->note(made("alice", "e-0"));
        QTRY_COMPARE(entries().size(), 1);
        for (int i = 1; i < 20; ++i) {
            log->note(made("alice", QString("e-%1").arg(i)));
        }
        QCOMPARE(entries().size(), 1);
        log->note(made("alice", "e-20"));  // half of what finds room
        QTRY_COMPARE(entries().size(), 21);
        log->note(made("alice", "e-21"));
        log.reset();
        QCOMPARE(entries().size(), 22);
    }

    void what_is_counted_is_written_after_a_minute_and_at_the_end() {
        settings.minute = std::chrono::milliseconds(20);
        auto log = open();
        for (int i = 0; i < 10; ++i) {
            log->note(made("alice", "e-lamp"));
        }
        const auto all = [this]() {
            qint64 count = 0;
            for (const entry_t& entry : entries()) {
                count += entry.count;
            }
            return count;
        };
        QTRY_COMPARE(all(), qint64(10));
        log.reset();
        settings.minute = std::chrono::hours(1);
        log = open();
        for (int i = 0; i < 5; ++i) {
            log->note(made("bob", "e-lamp"));
        }
        log.reset();
        QCOMPARE(all(), qint64(15));
        QCOMPARE(entries().back().user, QString("bob"));
        QCOMPARE(entries().back().count, qint64(4));
    }

    void entries_are_made_on_the_writer_s_thread() {
        const auto log = open();
        std::atomic<std::thread::id> where;
        log->note("alice", 0, [&where]() {
            where = std::this_thread::get_id();
            return QList<entry_t>{made("alice", "a"), made("alice", "b")};
        });
        QTRY_COMPARE(entries().size(), 2);
        QVERIFY(where.load() != std::this_thread::get_id());
    }

    void while_the_writer_is_busy_nobody_waits_and_losses_are_told() {
        settings.waiting.of_user = 10;
        auto log = open();
        std::binary_semaphore begun(0);
        std::binary_semaphore goes_on(0);
        log->note("mallory", 0, [&]() {
            begun.release();
            goes_on.acquire();
            return QList<entry_t>();
        });
        begun.acquire();
        for (int i = 0; i < 1'000; ++i) {
            log->note(made("mallory", QString::number(i)));
        }
        log->note(made("bob", "e-door"));
        goes_on.release();
        log.reset();
        qint64 lost = 0;
        bool has_bob = false;
        for (const entry_t& entry : entries()) {
            lost += entry.operation == "lost" && entry.user == "mallory" ? entry.count : 0;
            has_bob = has_bob || entry.user == "bob";
        }
        QCOMPARE(lost, qint64(990));
        QVERIFY(has_bob);
    }

    void a_failure_is_told_once_and_heals_with_nothing_lost() {
        settings.retry = std::chrono::milliseconds(10);
        const auto log = open();
        log->note(made("alice", "e-0"));
        QTRY_COMPARE(entries().size(), 1);
        QVERIFY(QDir().rename(folder->filePath("logs"), folder->filePath("old")));
        QFile block(folder->filePath("logs"));
        QVERIFY(block.open(QIODevice::WriteOnly));
        for (int i = 1; i <= 20; ++i) {
            log->note(made("alice", QString("e-%1").arg(i)));
        }
        QTRY_COMPARE(told_so_far().size(), 1);
        QVERIFY(told_so_far()[0].contains(folder->filePath("logs")));
        QVERIFY(block.remove());
        QTRY_COMPARE(entries().size(), 20);
        QTRY_COMPARE(told_so_far().size(), 2);
        QVERIFY(told_so_far()[1].contains("again"));
    }

    void what_cannot_be_kept_until_then_is_counted() {
        settings.retry = std::chrono::milliseconds(10);
        settings.most_unwritten = 500;
        const auto log = open();
        QVERIFY(QDir().rename(folder->filePath("logs"), folder->filePath("old")));
        QFile block(folder->filePath("logs"));
        QVERIFY(block.open(QIODevice::WriteOnly));
        for (int i = 1; i <= 50; ++i) {
            log->note(made("alice", QString("e-%1").arg(i)));
        }
        QTRY_COMPARE(told_so_far().size(), 1);
        QVERIFY(block.remove());
        QTRY_VERIFY(!entries().isEmpty() && entries().back().operation == "lost");
        QCOMPARE(entries().size() - 1 + entries().back().count, qint64(50));
    }

    void a_file_that_cannot_be_opened_is_one_sentence() {
        QFile block(folder->filePath("logs"));
        QVERIFY(block.open(QIODevice::WriteOnly));
        const auto log = audit_log_t::open(settings);
        QVERIFY2(log.error.contains(folder->filePath("logs")), qPrintable(log.error));
    }

    void noting_costs_little() {
        const auto log = open();
        const entry_t entry = made("alice", "e-lamp");
        constexpr int times = 20'000;
        const double before = processor_us();
        for (int i = 0; i < times; ++i) {
            log->note(entry);
        }
        const double each_us = (processor_us() - before) / times;
        qInfo("noting one takes %.2f us of the caller's thread", each_us);
        QVERIFY(each_us < 100);  // a write to a disk takes more
    }

 private:
    std::unique_ptr<audit_log_t> open() const {
        auto opened = audit_log_t::open(settings);
        return opened.is_ok() ? std::move(opened.value) : nullptr;
    }
    QList<entry_t> entries() const {
        audit::audit_reader_t reader;
        QList<entry_t> found;
        if (reader.open(settings.file.folder, "audit", 0).is_ok()) {
            while (const auto next = reader.next()) {
                found.append(next->entry);
            }
        }
        return found;
    }
    QStringList told_so_far() {
        const std::lock_guard held(mutex);
        return told;
    }

    std::unique_ptr<QTemporaryDir> folder;
    audit_log_t::settings_t settings;
    std::mutex mutex;
    QStringList told;
};

QTEST_GUILESS_MAIN(tst_audit_log_t)
#include "tst_audit_log_t.moc"
