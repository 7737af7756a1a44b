// When a write reaches the disk, and what is left when the disk does not take it.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>

#include "settings_file_t.h"

using namespace torlan;

namespace {

/// Names of the calls below in their order, with the last part of the path.
QStringList calls;
/// The call that fails; empty: none.
QString failing;

QString name_of(int _descriptor) {
    return QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(_descriptor))
        .section('/', -1);
}

bool fails(const QString& _call) {
    calls << _call;
    errno = EIO;
    return _call == failing;
}

}  // namespace

extern "C" int fsync(int _descriptor) {
    return fails("sync " + name_of(_descriptor)) ? -1 : int(syscall(SYS_fsync, _descriptor));
}

extern "C" int rename(const char* _from, const char* _to) noexcept {
    const QString from = QFile::decodeName(_from).section('/', -1);
    return fails("rename " + from) ? -1
                                   : int(syscall(SYS_renameat2, AT_FDCWD, _from, AT_FDCWD, _to, 0));
}

class tst_settings_file_durability : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup() { failing.clear(); }
    void document_is_on_the_disk_before_it_replaces_the_old_one();
    void disk_that_fails_is_told_data();
    void disk_that_fails_is_told();

 private:
    QByteArray bytes() const {
        QFile source(file->path());
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray("missing");
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<settings_file_t> file;
};

void tst_settings_file_durability::init() {
    file.reset();
    folder = std::make_unique<QTemporaryDir>();
    file = std::make_unique<settings_file_t>();
    QCOMPARE(file->open(folder->filePath("s.json")).error, QString());
    calls.clear();
}

void tst_settings_file_durability::document_is_on_the_disk_before_it_replaces_the_old_one() {
    QCOMPARE(file->write("{\"a\":1}").error, QString());
    const QString name = folder->path().section('/', -1);
    QCOMPARE(calls, (QStringList{"sync s.json.new", "rename s.json.new", "sync " + name}));
}

void tst_settings_file_durability::disk_that_fails_is_told_data() {
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QByteArray>("left");
    QTest::newRow("document") << "sync s.json.new"
                              << "cannot write" << QByteArray("{}\n");
    QTest::newRow("replacement") << "rename s.json.new"
                                 << "cannot replace" << QByteArray("{}\n");
    QTest::newRow("folder") << "sync"
                            << "cannot sync" << QByteArray("{\"a\":1}");
}

void tst_settings_file_durability::disk_that_fails_is_told() {
    QFETCH(QString, call);
    QFETCH(QString, error);
    QFETCH(QByteArray, left);
    failing = call == "sync" ? "sync " + folder->path().section('/', -1) : call;
    QVERIFY(file->write("{\"a\":1}").error.startsWith(error));
    QCOMPARE(bytes(), left);
    QVERIFY(!QFile::exists(file->path() + ".new"));
}

QTEST_GUILESS_MAIN(tst_settings_file_durability)
#include "tst_settings_file_durability.moc"
