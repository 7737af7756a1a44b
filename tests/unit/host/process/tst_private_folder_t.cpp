#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include "process/private_folder_t.h"

using process::private_folder_t;

class tst_private_folder_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void folder_and_files_are_the_owners_only();
    void file_is_replaced_as_a_whole();
    void folder_goes_with_the_object();
    void root_hands_it_to_the_account();
    void unknown_account_is_told();
    void file_that_cannot_be_written_is_told();
};

void tst_private_folder_t::folder_and_files_are_the_owners_only() {
    private_folder_t folder("thing");
    QVERIFY(folder.create("nobody").is_ok());
    QVERIFY(folder.write("file", "text").is_ok());
    const QFileInfo file(folder.path("file"));
    QCOMPARE(int(file.permissions() & 0x0077), 0);
    const QFileInfo parent(file.path());
    QCOMPARE(int(parent.permissions() & 0x0077), 0);
    QVERIFY(parent.fileName().startsWith("torlan-thing-"));
}

void tst_private_folder_t::file_is_replaced_as_a_whole() {
    private_folder_t folder("thing");
    QVERIFY(folder.create("nobody").is_ok());
    QVERIFY(folder.write("file", "a long former text").is_ok());
    QFile reader(folder.path("file"));
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(folder.write("file", "new").is_ok());
    QCOMPARE(reader.readAll(), QByteArray("a long former text"));
    QFile again(folder.path("file"));
    QVERIFY(again.open(QIODevice::ReadOnly));
    QCOMPARE(again.readAll(), QByteArray("new"));
    QCOMPARE(QFileInfo(folder.path("file")).dir().entryList(QDir::Files), QStringList{"file"});
}

void tst_private_folder_t::folder_goes_with_the_object() {
    QString path;
    {
        private_folder_t folder("thing");
        QVERIFY(folder.create("nobody").is_ok());
        QVERIFY(folder.write("file", "text").is_ok());
        path = folder.path({});
        QVERIFY(QFileInfo::exists(path));
    }
    QVERIFY(!QFileInfo::exists(path));
}

void tst_private_folder_t::root_hands_it_to_the_account() {
    if (::geteuid() != 0) {
        QSKIP("only root hands files over");
    }
    private_folder_t folder("thing");
    QVERIFY(folder.create("nobody").is_ok());
    QVERIFY(folder.write("file", "text").is_ok());
    QVERIFY(folder.owner().has_value() && folder.owner()->user != 0);
    QCOMPARE(QFileInfo(folder.path("file")).ownerId(), uint(folder.owner()->user));
    QCOMPARE(QFileInfo(folder.path({})).groupId(), uint(folder.owner()->group));
}

void tst_private_folder_t::unknown_account_is_told() {
    if (::geteuid() != 0) {
        QSKIP("only root hands files over");
    }
    private_folder_t folder("thing");
    QCOMPARE(folder.create("no-such-account").error,
             QString("There is no system account \"no-such-account\" to run the thing as."));
}

void tst_private_folder_t::file_that_cannot_be_written_is_told() {
    private_folder_t folder("thing");
    QVERIFY(folder.create("nobody").is_ok());
    const QString path = folder.path("no/such");
    QCOMPARE(folder.write("no/such", "text").error,
             QString("Cannot write the thing's files at %1: No such file or directory.").arg(path));
}

QTEST_GUILESS_MAIN(tst_private_folder_t)
#include "tst_private_folder_t.moc"
