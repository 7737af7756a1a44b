#include "broker/plugin_file_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using broker::plugin_file_t;

class tst_plugin_file_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void installed_one_is_beside_the_library();
    void what_was_opened_stays_when_the_path_is_exchanged();
    void one_that_others_can_change_is_refused_data();
    void one_that_others_can_change_is_refused();
    void no_file_is_told();

 private:
    std::unique_ptr<QTemporaryDir> folder;
    QString path;
};

void tst_plugin_file_t::init() {
    folder = std::make_unique<QTemporaryDir>();
    path = folder->filePath("plugin.so");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("judged") == 6);
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
}

void tst_plugin_file_t::installed_one_is_beside_the_library() {
    plugin_file_t plugin;
    QCOMPARE(plugin.open(plugin_file_t::usual_path()).error, QString());
    QVERIFY(plugin_file_t::usual_path().endsWith("/lib/libtorlan_broker_plugin.so"));
    QVERIFY((::fcntl(plugin.descriptor(), F_GETFD) & FD_CLOEXEC) != 0);
}

void tst_plugin_file_t::what_was_opened_stays_when_the_path_is_exchanged() {
    plugin_file_t plugin;
    QCOMPARE(plugin.open(path).error, QString());
    QVERIFY(QFile::remove(path));
    QFile other(path);
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write("another") == 7);
    QFile held(QString::fromLatin1(plugin.path_in_child()));
    QVERIFY(held.open(QIODevice::ReadOnly));
    QCOMPARE(held.readAll(), QByteArray("judged"));
}

void tst_plugin_file_t::one_that_others_can_change_is_refused_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("owner");
    QTest::newRow("all") << 0x6646 << -1;
    QTest::newRow("a group") << 0x6664 << -1;
    QTest::newRow("another user") << 0x6644 << 12'345;
}

void tst_plugin_file_t::one_that_others_can_change_is_refused() {
    QFETCH(int, mode);
    QFETCH(int, owner);
    if (::geteuid() != 0 && mode != 0x6646) {
        QSKIP("only root can give a file to another user or group");
    }
    QVERIFY(QFile::setPermissions(path, QFile::Permissions(mode)));
    if (::geteuid() == 0) {
        QCOMPARE(::chown(qPrintable(path), uid_t(owner), 12'345), 0);
    }
    plugin_file_t plugin;
    QCOMPARE(plugin.open(path).error,
             QString("%1 can be changed by other users of this machine.").arg(path));
    QCOMPARE(plugin.descriptor(), -1);
}

void tst_plugin_file_t::no_file_is_told() {
    plugin_file_t plugin;
    QCOMPARE(plugin.open(path + "-none").error,
             QString("The broker's plugin %1-none cannot be read: No such file or directory.")
                 .arg(path));
    QCOMPARE(plugin.open(folder->path()).error,
             QString("%1 is no plugin of the broker.").arg(folder->path()));
}

QTEST_GUILESS_MAIN(tst_plugin_file_t)
#include "tst_plugin_file_t.moc"
