#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "former_broker_t.h"
#include "kit/lock_holder.h"

using torlan::former_broker_t;
using namespace std::chrono_literals;

class tst_former_broker_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        path = folder->filePath("broker.lock");
    }

    void without_one_there_is_no_wait() {
        former_broker_t former(path);
        const QSignalSpy waiting(&former, &former_broker_t::waiting);
        QCOMPARE(former.wait(0ms).error, QString());
        QVERIFY(waiting.isEmpty() && former.descriptor() >= 0);
    }

    void one_that_ends_is_waited_for() {
        kit::lock_holder_t other(hold());
        QVERIFY(other.is_ready);
        former_broker_t former(path);
        const QSignalSpy waiting(&former, &former_broker_t::waiting);
        QTimer::singleShot(50ms, &former, [&other]() { ::kill(other.process, SIGKILL); });
        QCOMPARE(former.wait(20s).error, QString());
        QCOMPARE(waiting.size(), 1);
        QVERIFY(former.descriptor() >= 0);
    }

    void one_that_does_not_end_is_a_failure() {
        const kit::lock_holder_t other(hold());
        QVERIFY(other.is_ready);
        former_broker_t former(path);
        QVERIFY(former.wait(50ms).error.contains(path));
        QCOMPARE(former.descriptor(), -1);
    }

    void wait_can_be_given_up() {
        const kit::lock_holder_t other(hold());
        QVERIFY(other.is_ready);
        former_broker_t former(path);
        QTimer::singleShot(20ms, &former, &former_broker_t::give_up);
        QCOMPARE(former.wait(60s).error, QString("The start was broken off."));
    }

    void file_that_cannot_be_made_is_a_failure() {
        QVERIFY(former_broker_t(folder->filePath("none/lock")).wait(0ms).error.contains("none"));
    }

 private:
    std::function<void()> hold() const {
        return [this]() { (new process::inherited_lock_t(path))->take(); };
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString path;
};

QTEST_GUILESS_MAIN(tst_former_broker_t)
#include "tst_former_broker_t.moc"
