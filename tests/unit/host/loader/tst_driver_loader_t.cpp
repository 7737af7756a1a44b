#include <QDir>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>

#include "loader/driver_loader_t.h"

using loader::driver_loader_t;
using loader::refusal_reason_t;

Q_DECLARE_METATYPE(refusal_reason_t)

class tst_driver_loader_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
    }

    void a_good_driver_is_loaded() {
        take("good");
        driver_loader_t loader(folder->path());
        const auto drivers = loader.load_all();
        QCOMPARE(drivers.size(), std::size_t(1));
        QVERIFY(loader.refused().isEmpty());
        QVERIFY(drivers.front().get_driver()->finalize_database_initialization());
        QCOMPARE(drivers.front().get_metadata().class_name, QStringLiteral("x"));
        QCOMPARE(drivers.front().get_file(), path("good"));
    }

    void the_shipped_drivers_are_loaded() {
        const QDir shipped = QFileInfo(QStringLiteral(SHIPPED_DRIVER)).dir();
        driver_loader_t loader(shipped.path());
        const auto drivers = loader.load_all();
        QVERIFY(loader.refused().isEmpty());
        // Without the bus's library on this machine there is no driver for the bus.
        QCOMPARE(qsizetype(drivers.size()), shipped.entryList({"*.so"}, QDir::Files).size());
        const auto api = std::find_if(drivers.begin(), drivers.end(), [](const auto& _driver) {
            return _driver.get_metadata().class_name == QLatin1String("plugin_driver_api_t");
        });
        QVERIFY(api != drivers.end());
        QVERIFY(api->get_driver()->getCapability("IComunication") != nullptr);
    }

    void an_odd_plugin_is_refused_with_its_reason_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<refusal_reason_t>("reason");
        using r = refusal_reason_t;
        QTest::newRow("wrong interface") << QByteArray("other_interface") << r::other_interface;
        QTest::newRow("entry says otherwise") << QByteArray("other_answer") << r::other_interface;
        QTest::newRow("plain library") << QByteArray("plain_library") << r::no_metadata;
        QTest::newRow("missing entry") << QByteArray("no_entry") << r::missing_entry_point;
        QTest::newRow("throwing constructor") << QByteArray("throwing") << r::threw;
        QTest::newRow("throwing a number") << QByteArray("throwing_number") << r::threw;
        QTest::newRow("null instance") << QByteArray("null_instance") << r::no_instance;
        QTest::newRow("no driver") << QByteArray("no_driver") << r::not_a_driver;
        QTest::newRow("unresolved symbol") << QByteArray("unresolved") << r::not_loadable;
    }
    void an_odd_plugin_is_refused_with_its_reason() {
        QFETCH(QByteArray, name);
        take(name);
        driver_loader_t loader(folder->path());
        QVERIFY(loader.load_all().empty());
        QCOMPARE(loader.refused().size(), 1);
        const auto& refused = loader.refused().first();
        QTEST(refused.reason, "reason");
        QCOMPARE(refused.file, path(name));
        QVERIFY2(refused.text.contains(path(name)), qPrintable(refused.text));
    }

    void what_others_could_change_is_not_loaded() {
        take("good");
        QVERIFY(QFile::setPermissions(path("good"),
                                      QFile::permissions(path("good")) | QFileDevice::WriteOther));
        driver_loader_t loader(folder->path());
        QVERIFY(loader.load_all().empty());
        QCOMPARE(loader.refused().size(), 1);
        QCOMPARE(loader.refused().first().reason, refusal_reason_t::changeable);
        QVERIFY(loader.refused().first().text.contains("can be changed by other users"));
    }

    void the_text_says_what_the_constructor_threw() {
        take("throwing");
        driver_loader_t loader(folder->path());
        QVERIFY(loader.load_all().empty());
        QVERIFY(loader.refused().first().text.contains(QStringLiteral("no bus found")));
    }

    void one_odd_file_never_stops_the_others() {
        write("a_text", "not a library");
        take("no_entry");
        take("good");
        take("throwing");
        QVERIFY(QFile::link(path("nowhere"), path("dangling")));
        write("zz_cut", truncated("good"));
        driver_loader_t loader(folder->path());
        QCOMPARE(loader.load_all().size(), std::size_t(1));
        QStringList refused;
        for (const auto& file : loader.refused()) {
            refused += QFileInfo(file.file).baseName();
        }
        refused.sort();
        QCOMPARE(refused.join(QLatin1Char(' ')),
                 QStringLiteral("a_text dangling no_entry throwing zz_cut"));
    }

    void drivers_are_loaded_in_the_order_of_their_names() {
        for (const char* name : {"b", "a", "c"}) {
            QVERIFY(QFile::copy(QStringLiteral(GALLERY "/good.so"), path(name)));
        }
        QStringList order;
        driver_loader_t loader(folder->path());
        for (const auto& driver : loader.load_all()) {
            order += QFileInfo(driver.get_file()).baseName();
        }
        QCOMPARE(order,
                 QStringList({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    }

    void a_second_name_of_a_file_is_a_duplicate() {
        take("good");
        QVERIFY(QFile::link(path("good"), path("zz")));
        driver_loader_t loader(folder->path());
        QCOMPARE(loader.load_all().size(), std::size_t(1));
        QCOMPARE(loader.refused().size(), 1);
        QCOMPARE(loader.refused().first().reason, refusal_reason_t::duplicate);
    }

    void other_files_are_not_looked_at() {
        QVERIFY(QFile::copy(QStringLiteral(GALLERY "/good.so"),
                            folder->filePath(QStringLiteral("good.so.bak"))));
        QVERIFY(QDir(folder->path()).mkdir(QStringLiteral("folder.so")));
        driver_loader_t loader(folder->path());
        QVERIFY(loader.load_all().empty());
        QVERIFY(loader.refused().isEmpty());
    }

    void a_missing_folder_is_refused_itself() {
        driver_loader_t loader(folder->filePath(QStringLiteral("none")));
        QVERIFY(loader.load_all().empty());
        QCOMPARE(loader.refused().size(), 1);
        QCOMPARE(loader.refused().first().reason, refusal_reason_t::unreadable);
    }

    void the_driver_object_goes_with_its_owner() {
        take("good");
        QPointer<QObject> object;
        {
            const auto drivers = driver_loader_t(folder->path()).load_all();
            QCOMPARE(drivers.size(), std::size_t(1));
            object = drivers.front().get_driver();
            QVERIFY(object);
        }
        QVERIFY(!object);
    }

 private:
    QString path(const QByteArray& _name) const {
        return folder->filePath(QString::fromLatin1(_name) + QStringLiteral(".so"));
    }

    void take(const QByteArray& _name) const {
        QVERIFY(QFile::copy(
            QStringLiteral(GALLERY "/") + QString::fromLatin1(_name) + QStringLiteral(".so"),
            path(_name)));
    }

    void write(const QByteArray& _name, const QByteArray& _content) const {
        QFile file(path(_name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(_content), _content.size());
    }

    static QByteArray truncated(const char* _name) {
        QFile file(QStringLiteral(GALLERY "/") + QLatin1String(_name) + QStringLiteral(".so"));
        return file.open(QIODevice::ReadOnly) ? file.read(file.size() / 2) : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_driver_loader_t)
#include "tst_driver_loader_t.moc"
