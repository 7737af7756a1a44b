#include <grp.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "process/held_folder_lock_t.h"
#include "process/private_folder_t.h"

using process::private_folder_t;

namespace {

/// Whether a line of shell succeeds when another account runs it.
bool done_as(const process::system_account_t& _account, const QString& _line) {
    QProcess shell;
    shell.setChildProcessModifier([&_account]() {
        if (::setgroups(0, nullptr) != 0 || ::setgid(_account.group) != 0 ||
            ::setuid(_account.user) != 0) {
            ::_exit(126);
        }
    });
    shell.start("/bin/sh", {"-c", _line});
    return shell.waitForFinished() && shell.exitStatus() == QProcess::NormalExit &&
           shell.exitCode() == 0;
}

}  // namespace

class tst_private_folder_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void folder_and_files_are_the_owners_only();
    void file_is_replaced_as_a_whole();
    void folder_goes_with_the_object();
    void account_of_the_child_can_write_in_its_own_folder_only();
    void nothing_of_roots_goes_to_the_account_of_the_child();
    void what_killed_owners_left_is_removed_and_nothing_else();
    void unknown_account_is_told();
    void file_that_cannot_be_written_is_told();
};

void tst_private_folder_t::folder_and_files_are_the_owners_only() {
    private_folder_t folder("thing");
    QVERIFY(folder.create("nobody").is_ok());
    QVERIFY(folder.write("file", "text").is_ok());
    const QFileInfo file(folder.path("file"));
    const QFileInfo parent(file.path());
    // The group is that of the child's account, if that is another one.
    const bool is_root = ::geteuid() == 0;
    QCOMPARE(int(file.permissions() & 0x0077), is_root ? 0x0040 : 0);
    QCOMPARE(int(parent.permissions() & 0x0077), is_root ? 0x0010 : 0);
    QCOMPARE(int(QFileInfo(folder.path("own")).permissions() & 0x0077), 0);
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

void tst_private_folder_t::account_of_the_child_can_write_in_its_own_folder_only() {
    if (::geteuid() != 0) {
        QSKIP("only root has a child that is another account");
    }
    private_folder_t folder("thing");
    QVERIFY(folder.create("nobody").is_ok());
    QVERIFY(folder.write("file", "text").is_ok());
    const QFileInfo outer(folder.path({}));
    QCOMPARE(outer.ownerId(), 0u);
    QCOMPARE(QFileInfo(folder.path("file")).ownerId(), 0u);
    QCOMPARE(QFileInfo(folder.path("own")).ownerId(), uint(folder.owner()->user));
    QVERIFY(done_as(*folder.owner(), "cat '" + folder.path("file") + "'"));
    QVERIFY(done_as(*folder.owner(), "touch '" + folder.own_path("new") + "'"));
    for (const QString& line :
         {"touch '" + folder.path("new") + "'", "echo x >> '" + folder.path("file") + "'",
          "mv '" + folder.path("own") + "' '" + folder.path("other") + "'",
          "rm -f '" + folder.path("file") + "'"}) {
        QVERIFY2(!done_as(*folder.owner(), line), qPrintable(line));
    }
    QVERIFY(!done_as({12'345, 12'345}, "cat '" + folder.path("file") + "'"));
}

/// The account puts links and folders wherever it can, before, between and after what root does.
void tst_private_folder_t::nothing_of_roots_goes_to_the_account_of_the_child() {
    if (::geteuid() != 0) {
        QSKIP("only root has a child that is another account");
    }
    QTemporaryDir others;
    QVERIFY(QFile::setPermissions(others.path(), QFile::Permissions(0x7755)));
    QFile victim(others.filePath("victim"));
    QVERIFY(victim.open(QIODevice::WriteOnly) && victim.write("root's") == 6);
    victim.close();
    QVERIFY(QDir(others.path()).mkpath("folder/in"));
    for (int round = 0; round < 5; ++round) {
        private_folder_t folder("thing");
        QVERIFY(folder.create("nobody").is_ok());
        const process::system_account_t account = *folder.owner();
        const QString plant = "cd '" + folder.path("own") + "' && ln -s '" + others.path() +
                              "/folder' deep && ln -s '" + victim.fileName() +
                              "' host && mkdir real && ln -s '" + others.path() + "' real/up";
        QVERIFY(done_as(account, plant));
        QVERIFY(
            !done_as(account, "ln -sf '" + victim.fileName() + "' '" + folder.path("file") + "'"));
        QVERIFY(folder.write("file", "text").is_ok());
    }
    QCOMPARE(QFileInfo(victim).ownerId(), 0u);
    QCOMPARE(QFileInfo(victim).size(), 6);
    QVERIFY(QFileInfo::exists(others.filePath("folder/in")));
    QCOMPARE(QFileInfo(others.filePath("folder")).ownerId(), 0u);
}

void tst_private_folder_t::what_killed_owners_left_is_removed_and_nothing_else() {
    const QTemporaryDir place;
    const auto make = [&place](const char* _name) {
        const QString folder = place.filePath(QLatin1String(_name));
        return QDir().mkdir(folder) ? folder : QString();
    };
    const QString left = make("torlan-thing-left");
    const QString lives = make("torlan-thing-lives");
    const QString without = make("torlan-thing-without");
    const QString writable = make("torlan-thing-writable");
    const QString other = make("torlan-other-left");
    process::held_folder_lock_t living;
    QVERIFY(living.take(lives));
    for (const QString& folder : {left, writable, other}) {
        QVERIFY(process::held_folder_lock_t().take(folder));
    }
    QVERIFY(QFile::setPermissions(writable, QFile::Permissions(0x7777)));
    QVERIFY(QFile::link(lives, place.filePath("torlan-thing-link")));
    process::held_folder_lock_t::remove_left(place.path(), "torlan-thing-");
    QCOMPARE(QDir(place.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
             (QStringList{"torlan-other-left", "torlan-thing-link", "torlan-thing-lives",
                          "torlan-thing-without", "torlan-thing-writable"}));
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
