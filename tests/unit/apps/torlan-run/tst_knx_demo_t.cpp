#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "knx_demo_t.h"

using torlan::knx_demo_t;

/// What keeps a bus from being started; the rest needs the real programs, see the system's tests.
class tst_knx_demo_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        QFile program(folder->filePath("torlan-knx-house"));
        QVERIFY(program.open(QIODevice::WriteOnly));
    }

    void socket_is_in_the_data_folder() {
        QCOMPARE(knx_demo_t("/a b", "/bin").url(), "local:/a b/knxd.socket");
    }

    void path_that_a_socket_cannot_have_is_refused_data() {
        QTest::addColumn<qsizetype>("length");
        QTest::addColumn<bool>("is_refused");
        QTest::newRow("longest") << qsizetype(107) << false;
        QTest::newRow("one more") << qsizetype(108) << true;
        QTest::newRow("far beyond") << qsizetype(300) << true;
    }

    void path_that_a_socket_cannot_have_is_refused() {
        QFETCH(qsizetype, length);
        QFETCH(bool, is_refused);
        const QString beginning = folder->path() + "/";
        const QString data =
            beginning + QString(length - beginning.size() - qstrlen("/knxd.socket"), 'x');
        knx_demo_t demo(data, folder->path());
        // The folder is not there, which is found out behind it.
        const QString sentence = failure_of(&demo);
        QCOMPARE(sentence.contains("is too long for a socket"), is_refused);
        QVERIFY2(sentence.contains(data), qPrintable(sentence));
    }

    void build_without_devices_is_refused() {
        QFile::remove(folder->filePath("torlan-knx-house"));
        knx_demo_t demo(folder->path(), folder->path());
        QCOMPARE(failure_of(&demo), "There is no " + folder->path() +
                                        "/torlan-knx-house: this build is one without KNX.");
    }

    void bus_of_a_former_start_is_waited_for() {
        process::inherited_lock_t former(folder->filePath("knxd.lock"));
        QCOMPARE(former.take(), process::inherited_lock_t::state_t::ours);
        knx_demo_t demo(folder->path(), folder->path());
        QCOMPARE(failure_of(&demo),
                 "The KNX daemon of a former start in " + folder->path() + " does not end.");
        QVERIFY(!QFile::exists(folder->filePath("knxd.socket")));
    }

 private:
    /// What start() says; empty: nothing.
    static QString failure_of(knx_demo_t* _demo) {
        const QSignalSpy failed(_demo, &knx_demo_t::failed);
        _demo->start();
        return failed.isEmpty() ? QString() : failed.first()[0].toString();
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_knx_demo_t)
#include "tst_knx_demo_t.moc"
