#include "drivers/driver/plugin_driver_interface_t.h"

#include <QTest>
#include <memory>

#include "fakes/memory_database_t.h"
#include "fakes/recording_logger_t.h"

namespace {

const QString source = QStringLiteral("server/drivers/driver/plugin_driver_interface_t");

/// A driver that opens its base's fields and counts its own calls.
class probe_t : public interfaces::plugin_driver_interface_t {
 public:
    explicit probe_t(const QString& _name, bool _use_topic = true)
        : plugin_driver_interface_t(_name, QStringLiteral("1.0"), _use_topic) {}
    probe_t(const QString& _name, const QString& _version)
        : plugin_driver_interface_t(_name, _version, true) {}

    void init_event_to_dispatcher(bool, QObject*) override {}
    bool finalize_database_initialization() override {
        ++finalized;
        return result;
    }
    void start(bool) override {}

    using plugin_driver_interface_t::configuration;
    using plugin_driver_interface_t::database;
    using plugin_driver_interface_t::id;
    using plugin_driver_interface_t::name;
    using plugin_driver_interface_t::reserved;
    using plugin_driver_interface_t::reserved_list_1;
    using plugin_driver_interface_t::reserved_list_2;
    using plugin_driver_interface_t::reserved_text;
    using plugin_driver_interface_t::use_persistent_topic;
    using plugin_driver_interface_t::valid_name_pattern;
    using plugin_driver_interface_t::version;

    int finalized = 0;
    bool result = true;
};

}  // namespace

class tst_plugin_driver_interface_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { logger = std::make_unique<fakes::recording_logger_t>(); }
    void cleanup() { logger.reset(); }

    void construction_sets_the_identity_and_logs_it() {
        const probe_t driver(QStringLiteral("lights"), QStringLiteral("2.1"));
        QCOMPARE(driver.id, QStringLiteral("lights"));
        QCOMPARE(driver.name, QStringLiteral("lights"));
        QCOMPARE(driver.version, QStringLiteral("2.1"));
        QVERIFY(driver.use_persistent_topic);
        QVERIFY(!probe_t(QStringLiteral("x"), false).use_persistent_topic);
        QCOMPARE(driver.parent(), nullptr);
        QVERIFY(driver.database.isNull());
        QCOMPARE(logger->lines().constFirst(),
                 (line_t{QStringLiteral("Constructor plugin lights v. 2.1"), 4,
                         QStringLiteral("plugin_driver_interface_t"), source, 36}));
        QCOMPARE(logger->lines().size(), 2);  // one per driver
    }

    void construction_leaves_the_reserved_fields_empty() {
        const probe_t driver(QStringLiteral("x"));
        QCOMPARE(driver.valid_name_pattern,
                 QString::fromUtf8("[\\/\\w-_{}\\[\\]\\(\\)\\?\\^\\$\xC2\xA3!:.,=;@+']+"));
        QCOMPARE(driver.reserved, nullptr);
        QVERIFY(driver.configuration.isEmpty());
        QVERIFY(driver.reserved_list_1.isEmpty() && driver.reserved_list_2.isEmpty());
        QVERIFY(driver.reserved_text.isEmpty() && !driver.reserved_text.isNull());
    }

    void blank_name_or_version_is_only_logged_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("name_line");
        QTest::addColumn<bool>("version_line");
        QTest::newRow("both there") << "a"
                                    << "1" << false << false;
        QTest::newRow("name of blanks") << "  "
                                        << "1" << true << false;
        QTest::newRow("name empty") << ""
                                    << "1" << true << false;
        QTest::newRow("version of blanks") << "a"
                                           << " \t" << false << true;
        QTest::newRow("version empty") << "a"
                                       << "" << false << true;
        QTest::newRow("both empty") << ""
                                    << "" << true << true;
    }
    void blank_name_or_version_is_only_logged() {
        QFETCH(QString, name);
        QFETCH(QString, version);
        QFETCH(bool, name_line);
        QFETCH(bool, version_line);
        const probe_t driver(name, version);
        const QString function = QStringLiteral("plugin_driver_interface_t");
        QCOMPARE(
            logger->contains(QStringLiteral("Error to init driver name "), 2, function, source, 39),
            name_line);
        QCOMPARE(
            logger->contains(QStringLiteral("Error to init version "), 2, function, source, 41),
            version_line);
        QCOMPARE(logger->lines().size(), 1 + (name_line ? 1 : 0) + (version_line ? 1 : 0));
        QCOMPARE(driver.name, name);
        QCOMPARE(driver.version, version);
    }

    void no_database_logs_level_0_and_changes_nothing() {
        probe_t driver(QStringLiteral("lights"));
        home.set_topic(QStringLiteral("house"));
        QVERIFY(driver.init_database(home.get()));
        logger->clear();
        QVERIFY(!driver.init_database(nullptr));
        QCOMPARE(driver.id, QStringLiteral("house/lights"));
        QCOMPARE(driver.database.data(), home.get());
        QCOMPARE(driver.finalized, 1);
        QCOMPARE(logger->lines(),
                 (QList<line_t>{init_line(QStringLiteral("house/lights")),
                                {QStringLiteral("[house/lights] Error to set database is nullptr!"),
                                 0, QStringLiteral("init_database"), source, 179}}));
    }

    void the_id_is_the_topic_and_the_name_untrimmed() {
        probe_t driver(QStringLiteral("lights"));
        home.set_topic(QStringLiteral(" house "));
        logger->clear();
        QVERIFY(driver.init_database(home.get()));
        QCOMPARE(driver.id, QStringLiteral(" house /lights"));
        QCOMPARE(logger->lines(),
                 (QList<line_t>{init_line(QStringLiteral("lights")),
                                {QStringLiteral("[ house /lights] Driver id:  house /lights"), 6,
                                 QStringLiteral("init_database"), source, 194}}));
    }

    void an_id_equal_to_the_name_is_logged_and_goes_on() {
        probe_t driver(QStringLiteral("lights"), false);
        home.set_topic(QStringLiteral("house"));
        QVERIFY(driver.init_database(home.get()));
        QCOMPARE(driver.id, QStringLiteral("lights"));
        QCOMPARE(driver.finalized, 1);
        QVERIFY(logger->contains(QStringLiteral("TODO FS check if is correct"), 3,
                                 QStringLiteral("init_database"), source, 188));
    }

    void an_id_equal_to_the_name_but_for_blanks_is_logged() {
        probe_t driver(QStringLiteral("lights"), false);
        driver.id = QStringLiteral("  lights ");
        QVERIFY(driver.init_database(home.get()));
        QCOMPARE(logger->count(QStringLiteral("TODO FS check")), 1);
    }

    void an_empty_topic_still_gives_an_id() {
        probe_t driver(QStringLiteral("lights"));
        home.set_topic(QString());
        QVERIFY(driver.init_database(home.get()));
        QCOMPARE(driver.id, QStringLiteral("/lights"));
        QCOMPARE(logger->count(QStringLiteral("TODO")), 0);
    }

    void a_blank_name_without_a_topic_fails_with_the_name_in_brackets() {
        probe_t driver(QStringLiteral("   "), false);
        driver.id = QStringLiteral("\t");
        QVERIFY(!driver.init_database(home.get()));
        QCOMPARE(driver.finalized, 0);
        QVERIFY(logger->contains(QStringLiteral("[   ] Driver id is no setted"), 0,
                                 QStringLiteral("init_database"), source, 191));
        QCOMPARE(driver.database.data(), home.get());
    }

    void a_blank_name_with_a_topic_succeeds() {
        probe_t driver(QStringLiteral("  "));
        home.set_topic(QStringLiteral("house"));
        QVERIFY(driver.init_database(home.get()));
        QCOMPARE(driver.id, QStringLiteral("house/  "));
        QCOMPARE(logger->count(QStringLiteral("no setted")), 0);
    }

    void the_result_is_that_of_the_derived_driver() {
        probe_t driver(QStringLiteral("lights"));
        driver.result = false;
        QVERIFY(!driver.init_database(home.get()));
        QCOMPARE(driver.finalized, 1);
    }

    void the_base_has_no_capability() {
        probe_t driver(QStringLiteral("x"));
        QCOMPARE(driver.getCapability("IComunication"), nullptr);
        QCOMPARE(driver.getCapability(""), nullptr);
        QCOMPARE(driver.getCapability(nullptr), nullptr);
    }

    void the_base_has_no_meta_object_of_its_own() {
        const probe_t driver(QStringLiteral("x"));
        QCOMPARE(driver.metaObject(), &QObject::staticMetaObject);
    }

    void the_database_survives_the_driver_and_may_go_before_it() {
        auto own = std::make_unique<database::database_t>();
        {
            probe_t driver(QStringLiteral("x"));
            QVERIFY(driver.init_database(own.get()));
        }
        QVERIFY(own->getPersistent() != nullptr);
        probe_t driver(QStringLiteral("x"));
        QVERIFY(driver.init_database(own.get()));
        own.reset();
        QVERIFY(driver.database.isNull());
    }

    void without_a_logger_nothing_fails() {
        logger.reset();
        probe_t driver((QString()));
        QVERIFY(!driver.init_database(nullptr));
        QVERIFY(driver.init_database(home.get()));
    }

 private:
    using line_t = fakes::recording_logger_t::line_t;

    /// The name stands twice.
    static line_t init_line(const QString& _id) {
        return {QLatin1Char('[') + _id + QStringLiteral("] Init lights VERSION 1.0 from: lights"),
                4, QStringLiteral("init_database"), source, 177};
    }

    fakes::memory_database_t home;
    std::unique_ptr<fakes::recording_logger_t> logger;
};

QTEST_GUILESS_MAIN(tst_plugin_driver_interface_t)
#include "tst_plugin_driver_interface_t.moc"
