#include "kit/lock_holder.h"
#include "settings_file_t.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace torlan;

class tst_settings_file_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void missing_file_is_made_empty();
    void existing_file_is_kept_byte_by_byte();
    void only_the_owner_may_read();
    void written_document_is_read_back();
    void file_edited_by_hand_is_seen();
    void write_replaces_the_file_and_leaves_nothing_beside();
    void failed_write_leaves_the_old_document();
    void rest_of_a_killed_write_does_not_matter();
    void second_server_is_refused_until_the_first_ends();
    void programs_started_meanwhile_do_not_hold_the_lock();
    void link_stays_a_link();
    void unusable_document_is_one_sentence_data();
    void unusable_document_is_one_sentence();
    void file_above_the_limit_is_not_read_further();
    void unusable_folder_is_one_sentence();
    void folder_without_write_permission_is_one_sentence();

 private:
    void put_bytes(const QByteArray& _bytes) const {
        QFile source(path);
        QVERIFY(source.open(QIODevice::WriteOnly | QIODevice::Truncate));
        source.write(_bytes);
    }
    QByteArray bytes() const {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray("missing");
    }
    QStringList names() const {
        return QDir(folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString path;
};

void tst_settings_file_t::init() {
    folder = std::make_unique<QTemporaryDir>();
    path = folder->filePath("settings.json");
}

void tst_settings_file_t::missing_file_is_made_empty() {
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QVERIFY(file.is_new());
    QCOMPARE(bytes(), "{}\n");
    QVERIFY(file.read().is_ok());
    QCOMPARE(file.read().value, QJsonObject());
}

void tst_settings_file_t::existing_file_is_kept_byte_by_byte() {
    const QByteArray text = " { \"z\" : 1,\n\"a\":2 }  ";
    put_bytes(text);
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QVERIFY(!file.is_new());
    QCOMPARE(bytes(), text);
}

void tst_settings_file_t::only_the_owner_may_read() {
    const auto mode = [this]() {
        struct stat status = {};
        ::stat(QFile::encodeName(path).constData(), &status);
        return status.st_mode & 0777;
    };
    put_bytes("{}");
    QVERIFY(::chmod(QFile::encodeName(path).constData(), 0666) == 0);
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QCOMPARE(mode(), 0600u);
    const mode_t before = ::umask(0);
    QVERIFY(::chmod(QFile::encodeName(path).constData(), 0666) == 0);
    QCOMPARE(file.write("{\"a\":1}").error, QString());
    ::umask(before);
    QCOMPARE(mode(), 0600u);
}

void tst_settings_file_t::written_document_is_read_back() {
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QCOMPARE(file.write("{\"a\":{\"b\":\"w\"}}").error, QString());
    QCOMPARE(file.read().value, (QJsonObject{{"a", QJsonObject{{"b", "w"}}}}));
}

void tst_settings_file_t::file_edited_by_hand_is_seen() {
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    put_bytes("{\"by\":\"hand\"}");
    QCOMPARE(file.read().value, (QJsonObject{{"by", "hand"}}));
    put_bytes("{\"by\":");
    QCOMPARE(file.read().value, QJsonObject());
    QVERIFY(file.read().error.contains(path));
}

void tst_settings_file_t::write_replaces_the_file_and_leaves_nothing_beside() {
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QFile old(path);
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(file.write("{\"a\":1}").error, QString());
    QCOMPARE(old.readAll(), "{}\n");  // whoever reads meanwhile has the old document, whole
    QCOMPARE(bytes(), "{\"a\":1}");
    QCOMPARE(names(), (QStringList{"settings.json", "settings.json.lock"}));
}

void tst_settings_file_t::failed_write_leaves_the_old_document() {
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QVERIFY(QDir().mkdir(path + ".new"));
    const QString error = file.write("{\"a\":1}").error;
    QVERIFY(error.startsWith("cannot write"));
    QCOMPARE(bytes(), "{}\n");
}

void tst_settings_file_t::rest_of_a_killed_write_does_not_matter() {
    put_bytes("{\"old\":1}");
    QFile rest(path + ".new");
    QVERIFY(rest.open(QIODevice::WriteOnly));
    rest.write("{\"torn\":");
    rest.close();
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QCOMPARE(bytes(), "{\"old\":1}");
    QVERIFY(!rest.exists());
}

void tst_settings_file_t::second_server_is_refused_until_the_first_ends() {
    {
        const kit::lock_holder_t first(
            [this]() { (void)(new settings_file_t)->open(path).is_ok(); });
        QVERIFY(first.is_ready);
        const QString error = settings_file_t().open(path).error;
        QVERIFY2(error.contains("another server") &&
                     error.contains(QString("process %1").arg(first.process)),
                 qPrintable(error));
    }
    settings_file_t second;
    QCOMPARE(second.open(path).error, QString());
}

void tst_settings_file_t::programs_started_meanwhile_do_not_hold_the_lock() {
    settings_file_t file;
    QCOMPARE(file.open(path).error, QString());
    QProcess program;
    program.start("ls", {"-l", "/proc/self/fd"});
    QVERIFY(program.waitForFinished());
    const QByteArray open_files = program.readAllStandardOutput();
    QVERIFY(open_files.contains("/proc/"));
    QVERIFY2(!open_files.contains("settings.json"), open_files.constData());
}

void tst_settings_file_t::link_stays_a_link() {
    const QString link = folder->filePath("link.json");
    put_bytes("{}");
    QVERIFY(QFile::link(path, link));
    settings_file_t file;
    QCOMPARE(file.open(link).error, QString());
    QCOMPARE(file.write("{\"a\":1}").error, QString());
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(bytes(), "{\"a\":1}");
}

void tst_settings_file_t::unusable_document_is_one_sentence_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("torn") << QByteArray("{\"a\":");
    QTest::newRow("array") << QByteArray("[]");
    QTest::newRow("rest behind") << QByteArray("{} x");
    QTest::newRow("too large") << '{' + QByteArray(settings_file_t::max_bytes, ' ') + '}';
}

void tst_settings_file_t::unusable_document_is_one_sentence() {
    QFETCH(QByteArray, text);
    put_bytes(text);
    settings_file_t file;
    const QString error = file.open(path).error;
    QVERIFY(error.contains(path));
    QVERIFY(!error.contains('\n'));
    QVERIFY(bytes() == text);
}

// What was read of it would do.
void tst_settings_file_t::file_above_the_limit_is_not_read_further() {
    QCOMPARE(settings_file_t::max_bytes, 4194304);
    put_bytes("{}" + QByteArray(settings_file_t::max_bytes - 2, ' '));
    QCOMPARE(settings_file_t().open(path).error, QString());
    put_bytes("{}" + QByteArray(settings_file_t::max_bytes - 1, ' '));
    QVERIFY(settings_file_t().open(path).error.contains("is larger than 4194304 bytes"));
}

void tst_settings_file_t::unusable_folder_is_one_sentence() {
    QVERIFY(settings_file_t()
                .open(folder->filePath("no/such/s.json"))
                .error.contains("no/such/s.json"));
    put_bytes("{}");
    QVERIFY(settings_file_t().open(path + "/s.json").error.contains("s.json"));
    QVERIFY(QDir().mkdir(path + ".new"));
    QVERIFY(settings_file_t().open(path).error.startsWith("cannot write"));
}

void tst_settings_file_t::folder_without_write_permission_is_one_sentence() {
    if (::geteuid() == 0) {
        QSKIP("nothing is forbidden to root");
    }
    QVERIFY(QFile::setPermissions(folder->path(), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(settings_file_t().open(path).error.startsWith("cannot write"));
    QVERIFY(QFile::setPermissions(folder->path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

QTEST_GUILESS_MAIN(tst_settings_file_t)
#include "tst_settings_file_t.moc"
