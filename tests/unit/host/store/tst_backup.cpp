#include "store/backup.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "installation/document_reader.h"
#include "kit/small_home.h"
#include "store/sqlite_store_t.h"

using namespace database;
using namespace database::store;

class tst_backup : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        store = std::make_unique<sqlite_store_t>();
        QVERIFY(store->open(file("installation.db")).is_ok());
        QVERIFY(store->replace(installation::read_document(kit::small_home_text(), "small").value)
                    .is_ok());
    }

    void unpacked_is_what_was_backed_up() {
        QCOMPARE(write_backup(file("installation.db"), file("copy"), settings, 0).error, QString());
        QVERIFY(store->connection().run("DELETE FROM elements").is_ok());
        const auto unpacked = unpack_backup(file("copy"), file("new.db"), 0);
        QCOMPARE(unpacked.error, QString());
        QCOMPARE(unpacked.value, settings);
        sqlite_store_t next;
        QVERIFY(next.open(file("new.db")).is_ok());
        QVERIFY(next.read().value ==
                installation::read_document(kit::small_home_text(), "small").value);
        QVERIFY(!next.connection()
                     .value("SELECT 1 FROM sqlite_master WHERE name = 'backup'")
                     .value.isValid());
    }

    void file_is_its_owners_alone_and_stands_alone() {
        QCOMPARE(write_backup(file("installation.db"), file("copy"), settings, 0).error, QString());
        const auto rights = QFile::permissions(file("copy"));
        QVERIFY(!(rights & (QFileDevice::ReadGroup | QFileDevice::ReadOther)));
        QCOMPARE(QDir(folder->path()).entryList({"*copy*"}, QDir::Files | QDir::Hidden),
                 QStringList("copy"));
    }

    void file_that_is_there_stays() {
        QFile there(file("copy"));
        QVERIFY(there.open(QIODevice::WriteOnly) && there.write("mine") == 4);
        there.close();
        QCOMPARE(write_backup(file("installation.db"), file("copy"), settings, 0).error,
                 file("copy") + " cannot be written: File exists.");
        QVERIFY(there.open(QIODevice::ReadOnly));
        QCOMPARE(there.readAll(), QByteArray("mine"));
        QCOMPARE(QDir(folder->path()).entryList({"*copy*"}, QDir::Files | QDir::Hidden),
                 QStringList("copy"));
    }

    void plain_copy_has_no_settings() {
        QVERIFY(store->connection().run("VACUUM INTO ?", {file("plain")}).is_ok());
        const auto unpacked = unpack_backup(file("plain"), file("new.db"), 0);
        QCOMPARE(unpacked.error, QString());
        QVERIFY(unpacked.value.isEmpty());
    }

    void other_files_are_refused_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty") << QByteArray() << "There is no installation in ";
        QTest::newRow("text") << QByteArray(5'000, 'x') << "The database ";
    }
    void other_files_are_refused() {
        QFETCH(QByteArray, content);
        QFETCH(QString, error);
        QFile other(file("other"));
        QVERIFY(other.open(QIODevice::WriteOnly) && other.write(content) == content.size());
        other.close();
        const auto unpacked = unpack_backup(file("other"), file("new.db"), 0);
        QVERIFY2(unpacked.error.startsWith(error), qPrintable(unpacked.error));
        QVERIFY(!QFile::exists(file("new.db")));
    }

 private:
    QString file(const char* _name) const { return folder->filePath(_name); }

    const QByteArray settings = "{\"a\": \"ü\"}\n";
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<sqlite_store_t> store;
};

QTEST_GUILESS_MAIN(tst_backup)
#include "tst_backup.moc"
