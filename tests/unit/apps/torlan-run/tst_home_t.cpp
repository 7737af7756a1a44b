#include <sys/stat.h>

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "home_t.h"
#include "kit/lock_holder.h"

using torlan::home_t;

namespace {

mode_t mode_of(const QString& _path) {
    struct stat status = {};
    return ::stat(qPrintable(_path), &status) == 0 ? status.st_mode & 07777 : 0;
}

}  // namespace

class tst_home_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        place = std::make_unique<QTemporaryDir>();
        path = place->filePath("a/home");
    }

    void killed_restoration_is_finished_before_settings_are_looked_for() {
        QVERIFY(QDir().mkpath(path + "/restore.committed"));
        QFile file(path + "/restore.committed/settings.json");
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{}") == 2);
        file.close();
        home_t home(path);
        QCOMPARE(home.open("/drivers").error, QString());
        QFile settings(home.settings());
        QVERIFY(settings.open(QIODevice::ReadOnly));
        QCOMPARE(settings.readAll(), QByteArray("{}"));
    }

    void new_one_has_settings_that_others_cannot_read() {
        home_t home(path);
        QCOMPARE(home.make({}).error, QString());
        QCOMPARE(home.open("/drivers").error, QString());
        QCOMPARE(mode_of(path), mode_t(0711));
        QCOMPARE(mode_of(home.settings()), mode_t(0600));
        QFile file(home.settings());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("\"/drivers\""));
    }

    void settings_stay_as_they_are() {
        QVERIFY(QDir().mkpath(path));
        QFile file(path + "/settings.json");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{}");
        file.close();
        home_t home(path);
        QCOMPARE(home.make({}).error, QString());
        QCOMPARE(home.open("/drivers").error, QString());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("{}"));
        home.take_back();
        QVERIFY(file.exists());
    }

    void what_was_made_is_taken_back() {
        home_t home(path);
        QCOMPARE(home.make({}).error, QString());
        QCOMPARE(home.open("/drivers").error, QString());
        home.take_back();
        QVERIFY(!QFile::exists(path));
    }

    void folder_that_was_there_stays() {
        QVERIFY(QDir().mkpath(path));
        home_t home(path);
        QCOMPARE(home.make({}).error, QString());
        QCOMPARE(home.open("/drivers").error, QString());
        home.take_back();
        QVERIFY(QDir(path).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
        QVERIFY(QFile::exists(path));
    }

    // Of two first starts the one that is late takes nothing of the other's away.
    void one_that_is_in_use_is_left_alone() {
        home_t late(path);
        QCOMPARE(late.make({}).error, QString());
        const kit::lock_holder_t other([this]() {
            auto* const home = new home_t(path);
            (void)home->make({}).is_ok();
            (void)home->open("/drivers").is_ok();
        });
        QVERIFY(other.is_ready);
        const QString error = late.open("/drivers").error;
        QVERIFY2(error.contains(path) && error.contains(QString("process %1").arg(other.process)),
                 qPrintable(error));
        late.take_back();
        QVERIFY(QFile::exists(path + "/settings.json"));
    }

    void program_that_a_killed_supervisor_has_left_is_ended_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("server") << "torlan.lock";
        QTest::newRow("configuration server") << "settings.json.lock";
    }

    void program_that_a_killed_supervisor_has_left_is_ended() {
        QFETCH(QString, name);
        QVERIFY(QDir().mkpath(path));
        kit::lock_holder_t left([&]() { (new process::file_lock_t(path + "/" + name))->take(); });
        QVERIFY(left.is_ready);
        home_t home(path);
        const QSignalSpy told(&home, &home_t::ending);
        QCOMPARE(home.make({}).error, QString());
        QCOMPARE(home.open("/drivers").error, QString());
        QCOMPARE(left.ending(), SIGTERM);
        QCOMPARE(told.size(), 1);
    }

    void folder_of_others_is_refused() {
        QVERIFY(QDir().mkpath(path));
        QVERIFY(QFile::setPermissions(path, QFile::permissions(path) | QFile::WriteOther));
        home_t home(path);
        QCOMPARE(home.make({}).error, QString());
        QVERIFY(home.open("/drivers").error.contains("can be changed by other users"));
        QVERIFY(QDir(path).isEmpty());
    }

    void file_in_the_way_is_told() {
        QFile file(place->filePath("file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QString error = home_t(place->filePath("file/home")).make({}).error;
        QVERIFY2(error.contains("file/home"), qPrintable(error));
    }

    void new_one_belongs_to_the_account() {
        if (::geteuid() != 0) {
            QSKIP("only root gives a folder away");
        }
        home_t home(path);
        QCOMPARE(home.make("nobody").error, QString());
        struct stat status = {};
        QCOMPARE(::stat(qPrintable(path), &status), 0);
        QCOMPARE(status.st_uid, uid_t(65534));
        home.take_back();
        QVERIFY(!home_t(path).make("no-such-account").is_ok());
    }

 private:
    std::unique_ptr<QTemporaryDir> place;
    QString path;
};

QTEST_GUILESS_MAIN(tst_home_t)
#include "tst_home_t.moc"
