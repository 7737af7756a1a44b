#include "client_folder.h"

#include <sys/stat.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "fakes/recording_logger_t.h"

using spoil_t = void (*)(const QString& _folder);
Q_DECLARE_METATYPE(spoil_t)

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
        QCOMPARE(torlan::make_client_folder(place->filePath("a/b/")).error, QString());
        for (const char* name : {"a", "a/b", "a/b/config"}) {
            QCOMPARE(mode(place->filePath(name)), 0755);
        }
        QVERIFY(logger->lines().isEmpty());
    }

    void what_is_there_keeps_its_mode() {
        QVERIFY(QDir().mkdir(place->filePath("a")));
        QCOMPARE(torlan::make_client_folder(place->filePath("a")).error, QString());
        QCOMPARE(mode(place->filePath("a")), 0700);
        QCOMPARE(mode(place->filePath("a/config")), 0755);
    }

    void a_failure_is_a_line_of_the_log() {
        QFile file(place->filePath("file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(torlan::make_client_folder(file.fileName()).error, QString());
        QCOMPARE(logger->lines().size(), 1);
        QCOMPARE(logger->lines().first().level, 2);
        QVERIFY(logger->lines().first().message.contains(file.fileName()));
    }

    void what_others_could_change_is_refused_data() {
        QTest::addColumn<spoil_t>("spoil");
        QTest::addColumn<QString>("named");
        QTest::newRow("folder for all to write")
            << spoil_t([](const QString& _folder) { change(_folder + "/config", 0777); })
            << "/config can be changed by other users";
        QTest::newRow("folder above it")
            << spoil_t([](const QString& _folder) { change(_folder, 0777); })
            << "/a can be changed by other users";
        QTest::newRow("file for all to write") << spoil_t([](const QString& _folder) {
            QFile file(_folder + "/config/comunication.json");
            file.open(QIODevice::WriteOnly);
            change(file.fileName(), 0666);
        }) << "/config/comunication.json can be changed by other users";
        QTest::newRow("linked file") << spoil_t([](const QString& _folder) {
            QFile::link("/etc/hostname", _folder + "/config/comunication.json");
        }) << "/config/comunication.json is a link";
        QTest::newRow("linked to nothing") << spoil_t([](const QString& _folder) {
            QFile::link("/nonexistent", _folder + "/config/comunication.json");
        }) << "/config/comunication.json is a link";
        QTest::newRow("linked folder") << spoil_t([](const QString& _folder) {
            QDir().rmdir(_folder + "/config");
            QFile::link("/etc", _folder + "/config");
        }) << "/config is a link";
    }
    void what_others_could_change_is_refused() {
        QFETCH(spoil_t, spoil);
        QFETCH(QString, named);
        const QString folder = place->filePath("a");
        QCOMPARE(torlan::make_client_folder(folder).error, QString());
        spoil(folder);
        const QString error = torlan::make_client_folder(folder).error;
        QVERIFY2(error.contains(named), qPrintable(error));
        QVERIFY(logger->lines().isEmpty());
    }

    // An empty name is the root: nothing is made there.
    void no_folder_is_a_warning() {
        QCOMPARE(torlan::make_client_folder({}).error, QString());
        QCOMPARE(logger->lines().size(), 1);
        QCOMPARE(logger->lines().first().level, 3);
    }

 private:
    static void change(const QString& _path, mode_t _mode) {
        QCOMPARE(::chmod(QFile::encodeName(_path).constData(), _mode), 0);
    }
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
