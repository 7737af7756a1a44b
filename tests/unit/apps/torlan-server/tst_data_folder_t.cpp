#include "data_folder_t.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "kit/lock_holder.h"

using torlan::data_folder_t;

class tst_data_folder_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { place = std::make_unique<QTemporaryDir>(); }

    void a_missing_folder_is_made_for_its_owner_only() {
        data_folder_t folder(place->filePath("a/b"));
        QCOMPARE(folder.open().error, QString());
        const auto mode = QFile::permissions(place->filePath("a/b"));
        QVERIFY(
            !(mode & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther)));
        QVERIFY(mode & QFile::WriteOwner);
    }

    void a_folder_in_use_names_the_process() {
        const kit::lock_holder_t other(
            [this]() { (void)(new data_folder_t(place->path()))->open().is_ok(); });
        QVERIFY(other.is_ready);
        data_folder_t second(place->path());
        const QString error = second.open().error;
        QVERIFY2(error.contains(place->path()), qPrintable(error));
        QVERIFY2(error.contains(QString("process %1 (").arg(other.process)), qPrintable(error));
    }

    void killed_restoration_is_finished() {
        QVERIFY(QDir(place->path()).mkdir("restore.committed"));
        QFile file(place->filePath("restore.committed/installation.db"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        data_folder_t folder(place->path());
        QCOMPARE(folder.open().error, QString());
        QVERIFY(QFile::exists(place->filePath("installation.db")));
        QVERIFY(!QFile::exists(place->filePath("restore.committed")));
    }

    void it_is_free_again_afterwards() {
        { QCOMPARE(data_folder_t(place->path()).open().error, QString()); }
        QCOMPARE(data_folder_t(place->path()).open().error, QString());
    }

    void a_file_in_the_way_is_told() {
        const QString path = place->filePath("file");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(data_folder_t(path).open().error, path + " is not a folder.");
        QVERIFY(data_folder_t(path + "/below").open().error.contains(path + "/below"));
    }

    void a_folder_that_others_can_write_is_refused() {
        const QString path = place->filePath("open");
        QVERIFY(QDir().mkdir(path));
        QVERIFY(QFile::setPermissions(path, QFile::permissions(path) | QFile::WriteOther));
        QCOMPARE(data_folder_t(path).open().error,
                 path + " can be changed by other users of this machine.");
        QVERIFY(!QFile::exists(path + "/torlan.lock"));
    }

    void what_was_made_can_be_taken_back() {
        data_folder_t folder(place->filePath("a/b"));
        QCOMPARE(folder.open().error, QString());
        QFile file(folder.file("written"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        folder.take_back();
        QVERIFY(QDir(place->path()).isEmpty());
    }

    void what_was_there_before_stays() {
        QVERIFY(QDir().mkdir(place->filePath("a")));
        data_folder_t old(place->filePath("a"));
        QCOMPARE(old.open().error, QString());
        old.take_back();
        QVERIFY(QFileInfo::exists(place->filePath("a")));
        data_folder_t below(place->filePath("a/b"));
        QCOMPARE(below.open().error, QString());
        below.take_back();
        QVERIFY(!QFileInfo::exists(place->filePath("a/b")));
    }

 private:
    std::unique_ptr<QTemporaryDir> place;
};

QTEST_GUILESS_MAIN(tst_data_folder_t)
#include "tst_data_folder_t.moc"
