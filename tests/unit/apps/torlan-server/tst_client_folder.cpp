#include "client_folder.h"

#include <sys/stat.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "fakes/recording_logger_t.h"

class tst_client_folder : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        place = std::make_unique<QTemporaryDir>();
        logger = std::make_unique<fakes::recording_logger_t>();
        former_mask = ::umask(077);
    }
    void cleanup() {
        ::umask(former_mask);
        logger.reset();
    }

    void what_is_missing_is_made_for_everybody_to_enter() {
        torlan::make_client_folder(place->filePath("a/b/"));
        for (const char* name : {"a", "a/b", "a/b/config"}) {
            QCOMPARE(mode(place->filePath(name)), 0755);
        }
        QVERIFY(logger->lines().isEmpty());
    }

    void what_is_there_keeps_its_mode() {
        QVERIFY(QDir().mkdir(place->filePath("a")));
        torlan::make_client_folder(place->filePath("a"));
        QCOMPARE(mode(place->filePath("a")), 0700);
        QCOMPARE(mode(place->filePath("a/config")), 0755);
    }

    void a_failure_is_a_line_of_the_log() {
        QFile file(place->filePath("file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        torlan::make_client_folder(file.fileName());
        QCOMPARE(logger->lines().size(), 1);
        QCOMPARE(logger->lines().first().level, 2);
        QVERIFY(logger->lines().first().message.contains(file.fileName()));
    }

    // An empty name is the root: nothing is made there.
    void no_folder_is_a_warning() {
        torlan::make_client_folder({});
        QCOMPARE(logger->lines().size(), 1);
        QCOMPARE(logger->lines().first().level, 3);
    }

 private:
    static int mode(const QString& _path) {
        struct stat status = {};
        return ::stat(QFile::encodeName(_path).constData(), &status) == 0
                   ? int(status.st_mode & 07777)
                   : -1;
    }

    std::unique_ptr<QTemporaryDir> place;
    std::unique_ptr<fakes::recording_logger_t> logger;
    mode_t former_mask = 0;
};

QTEST_GUILESS_MAIN(tst_client_folder)
#include "tst_client_folder.moc"
