#include <fcntl.h>

#include <QTemporaryDir>
#include <QTest>

#include "kit/lock_holder.h"
#include "process/inherited_lock_t.h"

using namespace process;
using state_t = inherited_lock_t::state_t;

class tst_inherited_lock_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        path = folder->filePath("lock");
    }

    void one_holds_it() {
        inherited_lock_t first(path);
        QCOMPARE(first.descriptor(), -1);
        QCOMPARE(first.take(), state_t::ours);
        QVERIFY(first.descriptor() >= 0);
        QVERIFY((::fcntl(first.descriptor(), F_GETFD) & FD_CLOEXEC) != 0);
        QCOMPARE(inherited_lock_t(path).take(), state_t::held);
    }

    void child_that_inherited_it_holds_it_when_the_first_has_gone() {
        auto first = std::make_unique<inherited_lock_t>(path);
        QCOMPARE(first->take(), state_t::ours);
        {
            const kit::lock_holder_t child([]() {});
            QVERIFY(child.is_ready);
            first.reset();
            QCOMPARE(inherited_lock_t(path).take(), state_t::held);
        }
        QCOMPARE(inherited_lock_t(path).take(), state_t::ours);
    }

    void folder_that_is_not_there_fails() {
        inherited_lock_t lock(folder->filePath("none/lock"));
        QCOMPARE(lock.take(), state_t::failed);
        QCOMPARE(lock.descriptor(), -1);
    }

 private:
    std::unique_ptr<QTemporaryDir> folder;
    QString path;
};

QTEST_GUILESS_MAIN(tst_inherited_lock_t)
#include "tst_inherited_lock_t.moc"
