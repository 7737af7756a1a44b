#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "process/trusted_path.h"

using process::check_only_ours;
using process::is_only_ours;

class tst_trusted_path : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        place = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(place->path()).mkpath("a/b"));
        QFile made(file());
        QVERIFY(made.open(QIODevice::WriteOnly));
        QCOMPARE(change(file(), 0644), 0);
    }

    void owner_and_mode_decide_data() {
        QTest::addColumn<uint>("mode");
        QTest::addColumn<bool>("is_other");
        QTest::addColumn<bool>("ours");
        QTest::newRow("read by all") << 0644u << false << true;
        QTest::newRow("written by all") << 0646u << false << false;
        QTest::newRow("written by a group") << 0664u << false << false;
        QTest::newRow("of another user") << 0600u << true << false;
    }
    void owner_and_mode_decide() {
        QFETCH(uint, mode);
        QFETCH(bool, is_other);
        struct stat status = {};
        status.st_mode = S_IFREG | mode;
        status.st_uid = ::geteuid() + (is_other ? 54'321 : 0);
        status.st_gid = 54'321;
        QTEST(is_only_ours(status), "ours");
    }

    void root_and_root_s_group_are_no_others() {
        struct stat status = {};
        status.st_mode = S_IFREG | 0664;
        QVERIFY(is_only_ours(status));
    }

    void every_folder_above_counts() {
        QCOMPARE(check_only_ours(file()).error, QString());
        for (const char* folder : {"a/b", "a"}) {
            const QString path = place->filePath(folder);
            QCOMPARE(change(path, 0777), 0);
            QCOMPARE(check_only_ours(file()).error,
                     path + " can be changed by other users of this machine.");
            QCOMPARE(change(path, 0755), 0);
        }
    }

    void what_is_ours_is_safe_in_a_shared_folder_and_the_folder_is_not() {
        const QString shared = place->filePath("a");
        QCOMPARE(change(shared, 01777), 0);
        QCOMPARE(check_only_ours(file()).error, QString());
        QVERIFY(!check_only_ours(shared).is_ok());
    }

    void a_link_is_followed() {
        const QString link = place->filePath("link");
        QVERIFY(QFile::link(file(), link));
        QCOMPARE(check_only_ours(link).error, QString());
        QCOMPARE(change(file(), 0666), 0);
        QVERIFY(check_only_ours(link).error.startsWith(file()));
    }

    void what_is_missing_is_told() {
        const QString missing = place->filePath("missing");
        QCOMPARE(check_only_ours(missing).error, missing + " cannot be found.");
    }

 private:
    QString file() const { return place->filePath("a/b/file"); }
    static int change(const QString& _path, mode_t _mode) {
        return ::chmod(QFile::encodeName(_path).constData(), _mode);
    }

    std::unique_ptr<QTemporaryDir> place;
};

QTEST_GUILESS_MAIN(tst_trusted_path)
#include "tst_trusted_path.moc"
