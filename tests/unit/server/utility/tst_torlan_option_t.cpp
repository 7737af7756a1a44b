#include "utility/torlan_option_t.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <functional>
#include <memory>
#include <utility>

#include "fakes/recording_logger_t.h"
#include "unit/server/utility/support/fake_getprop_t.h"
#include "unit/server/utility/support/options_guard_t.h"

using database::definition::type_brand_t;
using fakes::recording_logger_t;
using utility::torlan_option_t;
using utility::type_configuration_mode_t;

namespace {

/// A logger that calls back at each line.
class calling_logger_t : public utility::logs::classlogs {
 public:
    explicit calling_logger_t(std::function<void()> _call) : call(std::move(_call)) {
        setInstance(this);
    }
    ~calling_logger_t() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(calling_logger_t)

    void log_asynch(const QString&, int, const QString&, const QString&, int) override { call(); }

 private:
    const std::function<void()> call;
};

void verify_shipped_defaults() {
    QCOMPARE(torlan_option_t::LogLevelStd(), 4U);
    QCOMPARE(torlan_option_t::LogLevelFile(), 5U);
    QCOMPARE(torlan_option_t::LogSize(), 25U);
    QCOMPARE(torlan_option_t::LogRotate(), 5U);
    QCOMPARE(torlan_option_t::LogFileName(), QStringLiteral("server-torlan"));
    QCOMPARE(torlan_option_t::Avahi_browse_option(), false);
    QCOMPARE(torlan_option_t::DelayToSave(), 500);
    QCOMPARE(torlan_option_t::DelayIterationToForceSave(), 5);
    QCOMPARE(torlan_option_t::UpdateDateTimeToDatabase(), 600);
    QCOMPARE(torlan_option_t::LevelBusMonitor(), 0);
    QCOMPARE(torlan_option_t::ConfigurationMode(), type_configuration_mode_t::http);
}

}  // namespace

class tst_torlan_option_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void cleanup() { torlan_option_t::destroyInstance(); }

    void getters_are_empty_without_an_instance() {
        const int numbers = type_configuration_mode_t::maxI;
        QCOMPARE(torlan_option_t::getInstance(), nullptr);
        for (const QString& text :
             {torlan_option_t::Platform(), torlan_option_t::Manufacturer(),
              torlan_option_t::Language(), torlan_option_t::ProductName(),
              torlan_option_t::CloudService(), torlan_option_t::CloudWeb(),
              torlan_option_t::CloudMQTTUrl(), torlan_option_t::Version(),
              torlan_option_t::BuildBranch(), torlan_option_t::BuildCommit(),
              torlan_option_t::BuildTime(), torlan_option_t::ImageVersion(),
              torlan_option_t::PluginFolder(), torlan_option_t::SystemCaCerts(),
              torlan_option_t::ClientFolder(), torlan_option_t::InstallationId(),
              torlan_option_t::Serial(), torlan_option_t::LogFileName(),
              torlan_option_t::LogsFolder()}) {
            QCOMPARE(text, QString());
        }
        QCOMPARE(torlan_option_t::Versions(), QJsonObject());
        QCOMPARE(torlan_option_t::ImageVersions(), QStringList());
        QCOMPARE(torlan_option_t::CaCertsFile(), QStringList());
        QCOMPARE(torlan_option_t::LevelBusMonitor(), 0);
        QCOMPARE(torlan_option_t::LogLevelStd(), 0U);
        QCOMPARE(torlan_option_t::LogLevelFile(), 0U);
        QCOMPARE(torlan_option_t::LogSize(), 0U);
        QCOMPARE(torlan_option_t::LogRotate(), 0U);
        QCOMPARE(torlan_option_t::Avahi_browse_option(), false);
        QCOMPARE(torlan_option_t::DelayToSave(), 0);
        QCOMPARE(torlan_option_t::DelayIterationToForceSave(), 0);
        QCOMPARE(torlan_option_t::UpdateDateTimeToDatabase(), 0);
        QVERIFY(torlan_option_t::Brand() == type_brand_t::KELMA);
        QCOMPARE(torlan_option_t::ConfigurationMode(), type_configuration_mode_t::http);
        QCOMPARE(type_configuration_mode_t::maxI, numbers);
    }

    void device_reads_without_an_instance_change_nothing() {
        const recording_logger_t logger;
        torlan_option_t::setDefaultOption();
        QCOMPARE(torlan_option_t::read_language(), QString());
        QCOMPARE(torlan_option_t::read_manufacture(), QString());
        QVERIFY(torlan_option_t::read_brand() == type_brand_t::KELMA);
        QCOMPARE(torlan_option_t::read_image_version(), QStringList());
        QVERIFY(logger.lines().isEmpty());
    }

    void a_new_object_is_not_the_instance() {
        const torlan_option_t options(nullptr);
        QCOMPARE(torlan_option_t::getInstance(), nullptr);
        QVERIFY(options.parent() == nullptr);
    }

    void a_new_instance_is_empty_until_it_is_filled() {
        fake_getprop_t device;
        device.answer_all();
        // The first line comes from the run for the language: everything else is still to come.
        bool is_first = true;
        const calling_logger_t logger([&is_first]() {
            if (std::exchange(is_first, false)) {
                QCOMPARE(torlan_option_t::Version(), QStringLiteral("1.2.3"));
                QCOMPARE(torlan_option_t::Language(), QString());
                QCOMPARE(torlan_option_t::Manufacturer(), QString());
                QVERIFY(torlan_option_t::Brand() == type_brand_t::KELMA);
                QCOMPARE(torlan_option_t::ImageVersions(), QStringList());
                QCOMPARE(torlan_option_t::LogLevelStd(), 0U);
                QCOMPARE(torlan_option_t::LogLevelFile(), 0U);
                QCOMPARE(torlan_option_t::LogSize(), 0U);
                QCOMPARE(torlan_option_t::LogRotate(), 0U);
                QCOMPARE(torlan_option_t::LogFileName(), QString());
                QCOMPARE(torlan_option_t::Avahi_browse_option(), false);
                QCOMPARE(torlan_option_t::DelayToSave(), 0);
                QCOMPARE(torlan_option_t::DelayIterationToForceSave(), 0);
                QCOMPARE(torlan_option_t::UpdateDateTimeToDatabase(), 0);
                QCOMPARE(torlan_option_t::LevelBusMonitor(), 0);
                QCOMPARE(torlan_option_t::ConfigurationMode(), type_configuration_mode_t::http);
            }
        });
        options_guard_t::create();
        QVERIFY(!is_first);
    }

    void what_the_host_hands_in_is_told_by_the_getters() {
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        QCOMPARE(torlan_option_t::Platform(), QStringLiteral("linux"));
        QCOMPARE(torlan_option_t::Version(), QStringLiteral("1.2.3"));
        QCOMPARE(torlan_option_t::Versions().value(QStringLiteral("api")).toString(),
                 QStringLiteral("v1"));
        QCOMPARE(torlan_option_t::BuildBranch(), QStringLiteral("main"));
        QCOMPARE(torlan_option_t::BuildCommit(), QStringLiteral("0123abc"));
        QCOMPARE(torlan_option_t::BuildTime(), QStringLiteral("2024-05-06"));
        verify_shipped_defaults();
        for (const QString& text :
             {torlan_option_t::ProductName(), torlan_option_t::CloudService(),
              torlan_option_t::CloudWeb(), torlan_option_t::CloudMQTTUrl(),
              torlan_option_t::PluginFolder(), torlan_option_t::SystemCaCerts(),
              torlan_option_t::ClientFolder(), torlan_option_t::InstallationId(),
              torlan_option_t::Serial(), torlan_option_t::LogsFolder()}) {
            QCOMPARE(text, QString());  // the configuration server has them
        }
    }

    void facts_are_read_in_order_when_the_instance_is_made() {
        fake_getprop_t device;
        device.answer_all();
        const options_guard_t options;
        const QByteArrayList expected{"persist.sys.locale", "ro.product.manufacturer",
                                      "ro.product.brand", "ro.build.display.id"};
        QCOMPARE(device.calls(), expected);
    }

    void creating_twice_keeps_the_object_and_resets_the_rest() {
        fake_getprop_t device;
        device.answer_all();
        torlan_option_t* const first = options_guard_t::create();
        first->set_log_level_std(1);
        first->set_log_level_file(2);
        first->set_log_size(3);
        first->set_log_rotate(4);
        first->set_level_bus_monitor(5);
        first->set_avahi_browse_option(true);
        QCOMPARE(torlan_option_t::LogLevelStd(), 1U);
        QCOMPARE(torlan_option_t::LogLevelFile(), 2U);
        QCOMPARE(torlan_option_t::LogSize(), 3U);
        QCOMPARE(torlan_option_t::LogRotate(), 4U);
        QCOMPARE(torlan_option_t::LevelBusMonitor(), 5);
        QCOMPARE(torlan_option_t::Avahi_browse_option(), true);

        device.answer("ro.product.manufacturer", "echo Other");
        QCOMPARE(options_guard_t::create(QStringLiteral("2.0.0")), first);
        QCOMPARE(torlan_option_t::getInstance(), first);
        QCOMPARE(torlan_option_t::Version(), QStringLiteral("2.0.0"));
        QCOMPARE(torlan_option_t::Manufacturer(), QStringLiteral("Other"));
        verify_shipped_defaults();
    }

    void creating_twice_takes_every_argument_and_fact_anew() {
        fake_getprop_t device;
        device.answer_all();
        options_guard_t::create();
        device.answer("persist.sys.locale", "echo fr-FR");
        device.answer("ro.product.brand", "echo Domivra");
        device.answer("ro.build.display.id", "echo next-2");
        torlan_option_t::createInstance(nullptr, QStringLiteral("other"), QStringLiteral("9"),
                                        QJsonObject{{QStringLiteral("k"), QStringLiteral("v")}},
                                        QStringLiteral("side"), QStringLiteral("fedc"),
                                        QStringLiteral("now"), nullptr);
        QCOMPARE(torlan_option_t::Platform(), QStringLiteral("other"));
        QCOMPARE(torlan_option_t::Version(), QStringLiteral("9"));
        const QJsonObject versions{{QStringLiteral("k"), QStringLiteral("v")}};
        QCOMPARE(torlan_option_t::Versions(), versions);
        QCOMPARE(torlan_option_t::BuildBranch(), QStringLiteral("side"));
        QCOMPARE(torlan_option_t::BuildCommit(), QStringLiteral("fedc"));
        QCOMPARE(torlan_option_t::BuildTime(), QStringLiteral("now"));
        QCOMPARE(torlan_option_t::Language(), QStringLiteral("fr_FR"));
        QCOMPARE(torlan_option_t::Brand().ToString(), QStringLiteral("Domivra"));
        QCOMPARE(torlan_option_t::ImageVersion(), QStringLiteral("next-2"));
    }

    void the_testing_flag_is_off_until_it_is_set() {
        const options_guard_t options;
        const auto warnings = []() {
            const recording_logger_t logger;
            torlan_option_t::print();
            return logger.count(QStringLiteral("SPECIAL FUNCTION FOR TESTING ENABLE"));
        };
        QCOMPARE(warnings(), 0);
        options->set_special_fuction_for_testing(true);
        QCOMPARE(warnings(), 1);
        options_guard_t::create();
        QCOMPARE(warnings(), 1);
        options->set_special_fuction_for_testing(false);
        QCOMPARE(warnings(), 0);
    }

    void the_defaults_leave_the_testing_flag_alone() {
        const recording_logger_t logger;
        const options_guard_t options;
        options->set_special_fuction_for_testing(true);
        torlan_option_t::setDefaultOption();
        torlan_option_t::print();
        QCOMPARE(logger.count(QStringLiteral("SPECIAL FUNCTION FOR TESTING ENABLE")), 1);
    }

    void the_instance_can_be_destroyed_and_made_again() {
        const QPointer<torlan_option_t> first = options_guard_t::create();
        torlan_option_t::destroyInstance();
        QVERIFY(first.isNull());
        QCOMPARE(torlan_option_t::getInstance(), nullptr);
        torlan_option_t::destroyInstance();
        QVERIFY(options_guard_t::create() != nullptr);
    }

    void destruction_by_the_parent_clears_the_instance() {
        auto parent = std::make_unique<QObject>();
        const QPointer<torlan_option_t> options =
            torlan_option_t::createInstance(nullptr, {}, {}, {}, {}, {}, {}, parent.get());
        QCOMPARE(options->parent(), parent.get());
        parent.reset();
        QVERIFY(options.isNull());
        QCOMPARE(torlan_option_t::getInstance(), nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void any_object_that_dies_takes_the_instance_along() {
        const QPointer<torlan_option_t> instance = options_guard_t::create();
        delete new torlan_option_t(nullptr);
        QCOMPARE(torlan_option_t::getInstance(), nullptr);
        QVERIFY(!instance.isNull());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(instance.isNull());
    }

    void other_threads_wait_until_the_facts_are_read() {
        fake_getprop_t device;
        device.answer_all();
        device.answer("ro.product.manufacturer", "sleep 0.3; echo Acme");
        QSemaphore first_line;
        const calling_logger_t logger([&first_line]() { first_line.release(); });
        torlan_option_t* seen = nullptr;
        QString manufacturer;
        const std::unique_ptr<QThread> other(QThread::create([&]() {
            first_line.acquire();
            seen = torlan_option_t::getInstance();
            manufacturer = torlan_option_t::Manufacturer();
        }));
        other->start();
        torlan_option_t* const made = options_guard_t::create();
        QVERIFY(other->wait());
        QCOMPARE(seen, made);
        QCOMPARE(manufacturer, QStringLiteral("Acme"));
    }
};

QTEST_GUILESS_MAIN(tst_torlan_option_t)
#include "tst_torlan_option_t.moc"
