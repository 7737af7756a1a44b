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
    void one_that_others_can_write_is_refused_data();
    void one_that_others_can_write_is_refused();
    void one_of_another_user_is_refused();
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

void tst_plugin_file_t::one_that_others_can_write_is_refused_data() {
    QTest::addColumn<int>("mode");
    QTest::newRow("group") << 0x0020;
    QTest::newRow("all") << 0x0002;
}

void tst_plugin_file_t::one_that_others_can_write_is_refused() {
    QFETCH(int, mode);
    QVERIFY(QFile::setPermissions(path, QFile::Permissions(0x6644 | mode)));
    plugin_file_t plugin;
    QCOMPARE(plugin.open(path).error,
             QString("The broker's plugin %1 can be written by others.").arg(path));
    QCOMPARE(plugin.descriptor(), -1);
}

void tst_plugin_file_t::one_of_another_user_is_refused() {
    if (::geteuid() != 0) {
        QSKIP("only root can make a file of another user");
    }
    QCOMPARE(::chown(qPrintable(path), 12'345, 12'345), 0);
    plugin_file_t plugin;
    QVERIFY(plugin.open(path).error.contains("can be written by others"));
}

void tst_plugin_file_t::no_file_is_told() {
    plugin_file_t plugin;
    QCOMPARE(plugin.open(path + "-none").error,
             QString("The broker's plugin %1-none cannot be read: No such file or directory.")
                 .arg(path));
    QVERIFY(!plugin.open(folder->path()).is_ok());
}

QTEST_GUILESS_MAIN(tst_plugin_file_t)
#include "tst_plugin_file_t.moc"
