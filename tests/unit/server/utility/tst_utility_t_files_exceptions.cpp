// utility_t: what becomes of an exception while a file is written.
#include <QTemporaryDir>
#include <QTest>
#include <cstdlib>
#include <new>
#include <utility>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

namespace {

enum class failure_t { none, standard, other };

/// What the next allocation of this thread ends with.
thread_local failure_t next_allocation = failure_t::none;

}  // namespace

// The one way to make writing a file throw: the file's own object needs memory.
void* operator new(std::size_t _size) {
    const failure_t failure = std::exchange(next_allocation, failure_t::none);
    if (failure == failure_t::other) {
        throw 7;
    }
    void* const memory =
        failure == failure_t::standard ? nullptr : std::malloc(_size == 0 ? 1 : _size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void* operator new(std::size_t _size, const std::nothrow_t&) noexcept {
    return std::malloc(_size == 0 ? 1 : _size);
}
void operator delete(void* _memory) noexcept {
    std::free(_memory);
}
void operator delete(void* _memory, std::size_t) noexcept {
    std::free(_memory);
}

class tst_utility_t_files_exceptions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void an_exception_while_writing_is_logged_and_reported_data() {
        QTest::addColumn<int>("failure");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("line");
        QTest::newRow("standard") << int(failure_t::standard)
                                  << "Handling exception: std::bad_alloc" << 60;
        QTest::newRow("other") << int(failure_t::other) << "Handling exception: unknown" << 63;
    }
    void an_exception_while_writing_is_logged_and_reported() {
        QFETCH(const int, failure);
        QFETCH(const QString, message);
        QFETCH(const int, line);
        const QTemporaryDir folder;
        const QString path = folder.filePath("settings.json");
        const QJsonObject object{{"a", 1}};
        const fakes::recording_logger_t logger;
        next_allocation = failure_t(failure);
        const bool written = utility::utility_t::writeToFile(path, object, {});
        next_allocation = failure_t::none;
        QVERIFY(!written);
        QVERIFY(!QFile::exists(path));
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains(message, 1, "writeToFile", "server/utility/utility_t", line));
    }

    void the_next_write_succeeds() {
        const QTemporaryDir folder;
        const fakes::recording_logger_t logger;
        QVERIFY(utility::utility_t::writeToFile(folder.filePath("settings.json"), {}, {}));
        QVERIFY(logger.lines().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_utility_t_files_exceptions)
#include "tst_utility_t_files_exceptions.moc"
