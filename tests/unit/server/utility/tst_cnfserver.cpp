#include <QTest>
#include <type_traits>

#include "utility/cnfserver.h"

using utility::cnfserver;

namespace {

/// A group holds its key and nothing else.
template <class Group>
constexpr bool is_plain_group =
    sizeof(Group) == sizeof(QString) &&
    !std::is_polymorphic_v<Group> && std::is_convertible_v<const Group&, const QString&>;

using statics_o = cnfserver::statics_o;
static_assert(is_plain_group<cnfserver>);
static_assert(is_plain_group<cnfserver::installation_o>);
static_assert(is_plain_group<cnfserver::installation_o::cloud_o>);
static_assert(is_plain_group<statics_o::drdconf_o>);
static_assert(is_plain_group<statics_o::device_o>);
static_assert(is_plain_group<statics_o::torlan_o>);
static_assert(is_plain_group<statics_o::torlan_o::comunication_o::global_o>);
static_assert(is_plain_group<statics_o::torlan_o::paths_o>);
static_assert(is_plain_group<statics_o::torlan_o::urls_o>);
static_assert(is_plain_group<statics_o::mosquitto_o>);
static_assert(is_plain_group<cnfserver::realtime_o::torlan_o>);
static_assert(is_plain_group<cnfserver::realtime_o::torlan_o::database_o>);
static_assert(is_plain_group<cnfserver::torlan_o>);
static_assert(!std::is_same_v<statics_o::torlan_o, cnfserver::realtime_o::torlan_o> &&
              !std::is_same_v<statics_o::torlan_o, cnfserver::torlan_o> &&
              !std::is_same_v<cnfserver::realtime_o::torlan_o, cnfserver::torlan_o>);
static_assert(std::is_constructible_v<statics_o::mosquitto_o, QString> &&
              !std::is_convertible_v<QString, statics_o::mosquitto_o>);

}  // namespace

class tst_cnfserver : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_constant_holds_its_own_segment_data() {
        QTest::addColumn<QString>("constant");
        QTest::addColumn<QString>("segment");

        QTest::newRow("base") << QString(cnfserver::base)
                              << QStringLiteral("http://127.0.0.1:4321/");
        QTest::newRow("trigger") << QString(cnfserver::trigger)
                                 << QStringLiteral("?runtriggers=true");
        QTest::newRow("installation_o::base")
            << QString(cnfserver::installation_o::base) << QStringLiteral("installation/");
        QTest::newRow("installation_o::installation_id")
            << QString(cnfserver::installation_o::installation_id)
            << QStringLiteral("installation_id");
        QTest::newRow("installation_o::mqtt_devices")
            << QString(cnfserver::installation_o::mqtt_devices) << QStringLiteral("mqtt_devices");
        QTest::newRow("installation_o::cloud_enabled")
            << QString(cnfserver::installation_o::cloud_enabled) << QStringLiteral("cloud_enabled");
        QTest::newRow("installation_o::master_version")
            << QString(cnfserver::installation_o::master_version)
            << QStringLiteral("master_version");
        QTest::newRow("installation_o::master")
            << QString(cnfserver::installation_o::master) << QStringLiteral("master");
        QTest::newRow("installation_o::master_model")
            << QString(cnfserver::installation_o::master_model) << QStringLiteral("master_model");
        QTest::newRow("installation_o::cloud_o::base")
            << QString(cnfserver::installation_o::cloud_o::base) << QStringLiteral("cloud/");
        QTest::newRow("installation_o::cloud_o::cloud_api_token")
            << QString(cnfserver::installation_o::cloud_o::cloud_api_token)
            << QStringLiteral("cloud_api_token");
        QTest::newRow("statics_o::base")
            << QString(cnfserver::statics_o::base) << QStringLiteral("static/");
        QTest::newRow("statics_o::drdconf_o::base")
            << QString(cnfserver::statics_o::drdconf_o::base) << QStringLiteral("drdconf/");
        QTest::newRow("statics_o::drdconf_o::serial")
            << QString(cnfserver::statics_o::drdconf_o::serial) << QStringLiteral("serial");
        QTest::newRow("statics_o::device_o::base")
            << QString(cnfserver::statics_o::device_o::base) << QStringLiteral("device/");
        QTest::newRow("statics_o::device_o::product_code")
            << QString(cnfserver::statics_o::device_o::product_code)
            << QStringLiteral("product_code");
        QTest::newRow("statics_o::device_o::product_name")
            << QString(cnfserver::statics_o::device_o::product_name)
            << QStringLiteral("product_name");
        QTest::newRow("statics_o::device_o::version")
            << QString(cnfserver::statics_o::device_o::version) << QStringLiteral("version");
        QTest::newRow("statics_o::torlan_o::base")
            << QString(cnfserver::statics_o::torlan_o::base) << QStringLiteral("torlan/");
        QTest::newRow("statics_o::torlan_o::comunication")
            << QString(cnfserver::statics_o::torlan_o::comunication)
            << QStringLiteral("comunication");
        QTest::newRow("statics_o::torlan_o::zeroconf")
            << QString(cnfserver::statics_o::torlan_o::zeroconf) << QStringLiteral("zeroconf");
        QTest::newRow("statics_o::torlan_o::comunication_o::base")
            << QString(cnfserver::statics_o::torlan_o::comunication_o::base)
            << QStringLiteral("comunication/");
        QTest::newRow("statics_o::torlan_o::comunication_o::global_o::base")
            << QString(cnfserver::statics_o::torlan_o::comunication_o::global_o::base)
            << QStringLiteral("global/");
        QTest::newRow("statics_o::torlan_o::comunication_o::global_o::installation_id")
            << QString(cnfserver::statics_o::torlan_o::comunication_o::global_o::installation_id)
            << QStringLiteral("installation_id");
        QTest::newRow("statics_o::torlan_o::paths_o::base")
            << QString(cnfserver::statics_o::torlan_o::paths_o::base) << QStringLiteral("paths/");
        QTest::newRow("statics_o::torlan_o::paths_o::cacerts")
            << QString(cnfserver::statics_o::torlan_o::paths_o::cacerts)
            << QStringLiteral("cacerts");
        QTest::newRow("statics_o::torlan_o::paths_o::plugins")
            << QString(cnfserver::statics_o::torlan_o::paths_o::plugins)
            << QStringLiteral("plugins");
        QTest::newRow("statics_o::torlan_o::paths_o::logs")
            << QString(cnfserver::statics_o::torlan_o::paths_o::logs) << QStringLiteral("logs");
        QTest::newRow("statics_o::torlan_o::paths_o::client_communication")
            << QString(cnfserver::statics_o::torlan_o::paths_o::client_communication)
            << QStringLiteral("client_communication");
        QTest::newRow("statics_o::torlan_o::paths_o::system_ca_certs")
            << QString(cnfserver::statics_o::torlan_o::paths_o::system_ca_certs)
            << QStringLiteral("system_ca_certs");
        QTest::newRow("statics_o::torlan_o::urls_o::base")
            << QString(cnfserver::statics_o::torlan_o::urls_o::base) << QStringLiteral("urls/");
        QTest::newRow("statics_o::torlan_o::urls_o::cloud_service")
            << QString(cnfserver::statics_o::torlan_o::urls_o::cloud_service)
            << QStringLiteral("cloud_service");
        QTest::newRow("statics_o::torlan_o::urls_o::cloud_web")
            << QString(cnfserver::statics_o::torlan_o::urls_o::cloud_web)
            << QStringLiteral("cloud_web");
        QTest::newRow("statics_o::mosquitto_o::base")
            << QString(cnfserver::statics_o::mosquitto_o::base) << QStringLiteral("mosquitto/");
        QTest::newRow("statics_o::mosquitto_o::mqtt_cloud_url")
            << QString(cnfserver::statics_o::mosquitto_o::mqtt_cloud_url)
            << QStringLiteral("mqtt_cloud_url");
        QTest::newRow("realtime_o::base")
            << QString(cnfserver::realtime_o::base) << QStringLiteral("realtime/");
        QTest::newRow("realtime_o::torlan_o::base")
            << QString(cnfserver::realtime_o::torlan_o::base) << QStringLiteral("torlan/");
        QTest::newRow("realtime_o::torlan_o::database")
            << QString(cnfserver::realtime_o::torlan_o::database) << QStringLiteral("database");
        QTest::newRow("realtime_o::torlan_o::database_o::base")
            << QString(cnfserver::realtime_o::torlan_o::database_o::base)
            << QStringLiteral("database/");
        QTest::newRow("realtime_o::torlan_o::database_o::installation")
            << QString(cnfserver::realtime_o::torlan_o::database_o::installation)
            << QStringLiteral("installation");
        QTest::newRow("torlan_o::base")
            << QString(cnfserver::torlan_o::base) << QStringLiteral("torlan/");
        QTest::newRow("torlan_o::database")
            << QString(cnfserver::torlan_o::database) << QStringLiteral("database");
        QTest::newRow("torlan_o::presencesimulation")
            << QString(cnfserver::torlan_o::presencesimulation)
            << QStringLiteral("presencesimulation");
        QTest::newRow("torlan_o::preserved_realtime")
            << QString(cnfserver::torlan_o::preserved_realtime)
            << QStringLiteral("preserved_realtime");
        QTest::newRow("torlan_o::baos_stick_params")
            << QString(cnfserver::torlan_o::baos_stick_params)
            << QStringLiteral("baos_stick_params");
    }

    void each_constant_holds_its_own_segment() {
        QFETCH(const QString, constant);
        QFETCH(const QString, segment);
        QCOMPARE(constant, segment);
    }

    void a_full_path_has_a_closing_slash_below_static_only_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");

        QTest::newRow("installation_o::installation_id")
            << cnfserver::installation_o::installation_id.toString()
            << QStringLiteral("installation/installation_id");
        QTest::newRow("installation_o::mqtt_devices")
            << cnfserver::installation_o::mqtt_devices.toString()
            << QStringLiteral("installation/mqtt_devices");
        QTest::newRow("installation_o::cloud_enabled")
            << cnfserver::installation_o::cloud_enabled.toString()
            << QStringLiteral("installation/cloud_enabled");
        QTest::newRow("installation_o::master_version")
            << cnfserver::installation_o::master_version.toString()
            << QStringLiteral("installation/master_version");
        QTest::newRow("installation_o::master") << cnfserver::installation_o::master.toString()
                                                << QStringLiteral("installation/master");
        QTest::newRow("installation_o::master_model")
            << cnfserver::installation_o::master_model.toString()
            << QStringLiteral("installation/master_model");
        QTest::newRow("statics_o::drdconf_o::serial")
            << cnfserver::statics_o::drdconf_o::serial.toString()
            << QStringLiteral("static/drdconf/serial/");
        QTest::newRow("statics_o::device_o::product_code")
            << cnfserver::statics_o::device_o::product_code.toString()
            << QStringLiteral("static/device/product_code/");
        QTest::newRow("statics_o::device_o::product_name")
            << cnfserver::statics_o::device_o::product_name.toString()
            << QStringLiteral("static/device/product_name/");
        QTest::newRow("statics_o::device_o::version")
            << cnfserver::statics_o::device_o::version.toString()
            << QStringLiteral("static/device/version/");
        QTest::newRow("statics_o::torlan_o::comunication")
            << cnfserver::statics_o::torlan_o::comunication.toString()
            << QStringLiteral("static/torlan/comunication/");
        QTest::newRow("statics_o::torlan_o::zeroconf")
            << cnfserver::statics_o::torlan_o::zeroconf.toString()
            << QStringLiteral("static/torlan/zeroconf/");
        QTest::newRow("statics_o::torlan_o::comunication_o::global_o::installation_id")
            << cnfserver::statics_o::torlan_o::comunication_o::global_o::installation_id.toString()
            << QStringLiteral("static/torlan/comunication/global/installation_id/");
        QTest::newRow("statics_o::torlan_o::paths_o::cacerts")
            << cnfserver::statics_o::torlan_o::paths_o::cacerts.toString()
            << QStringLiteral("static/torlan/paths/cacerts/");
        QTest::newRow("statics_o::torlan_o::paths_o::plugins")
            << cnfserver::statics_o::torlan_o::paths_o::plugins.toString()
            << QStringLiteral("static/torlan/paths/plugins/");
        QTest::newRow("statics_o::torlan_o::paths_o::logs")
            << cnfserver::statics_o::torlan_o::paths_o::logs.toString()
            << QStringLiteral("static/torlan/paths/logs/");
        QTest::newRow("statics_o::torlan_o::paths_o::client_communication")
            << cnfserver::statics_o::torlan_o::paths_o::client_communication.toString()
            << QStringLiteral("static/torlan/paths/client_communication/");
        QTest::newRow("statics_o::torlan_o::paths_o::system_ca_certs")
            << cnfserver::statics_o::torlan_o::paths_o::system_ca_certs.toString()
            << QStringLiteral("static/torlan/paths/system_ca_certs/");
        QTest::newRow("statics_o::torlan_o::urls_o::cloud_service")
            << cnfserver::statics_o::torlan_o::urls_o::cloud_service.toString()
            << QStringLiteral("static/torlan/urls/cloud_service/");
        QTest::newRow("statics_o::torlan_o::urls_o::cloud_web")
            << cnfserver::statics_o::torlan_o::urls_o::cloud_web.toString()
            << QStringLiteral("static/torlan/urls/cloud_web/");
        QTest::newRow("statics_o::mosquitto_o::mqtt_cloud_url")
            << cnfserver::statics_o::mosquitto_o::mqtt_cloud_url.toString()
            << QStringLiteral("static/mosquitto/mqtt_cloud_url/");
    }

    void a_full_path_has_a_closing_slash_below_static_only() {
        QFETCH(const QString, path);
        QFETCH(const QString, expected);
        QCOMPARE(path, expected);
    }

    void the_server_listens_on_port_4321_of_this_machine() {
        QCOMPARE(utility::server_address, QStringLiteral("127.0.0.1"));
        QCOMPARE(utility::server_url, QStringLiteral("http://127.0.0.1:4321/"));
    }

    void keys_can_be_concatenated() {
        QCOMPARE(cnfserver::base + cnfserver::trigger,
                 QStringLiteral("http://127.0.0.1:4321/?runtriggers=true"));
        QCOMPARE(cnfserver::realtime_o::base + cnfserver::realtime_o::torlan_o::base +
                     cnfserver::realtime_o::torlan_o::database,
                 QStringLiteral("realtime/torlan/database"));
        QCOMPARE(cnfserver::realtime_o::base + cnfserver::realtime_o::torlan_o::base +
                     cnfserver::realtime_o::torlan_o::database_o::base +
                     cnfserver::realtime_o::torlan_o::database_o::installation,
                 QStringLiteral("realtime/torlan/database/installation"));
        QCOMPARE(cnfserver::installation_o::base + cnfserver::installation_o::cloud_o::base +
                     cnfserver::installation_o::cloud_o::cloud_api_token,
                 QStringLiteral("installation/cloud/cloud_api_token"));
    }

    void equal_keys_of_two_groups_stay_two_constants() {
        const QString& one = cnfserver::installation_o::installation_id;
        const QString& other = statics_o::torlan_o::comunication_o::global_o::installation_id;
        QCOMPARE(one, other);
        QVERIFY(&one != &other);
        QVERIFY(cnfserver::installation_o::installation_id.toString() !=
                statics_o::torlan_o::comunication_o::global_o::installation_id.toString());
        const QString& database = cnfserver::torlan_o::database;
        const QString& realtime = cnfserver::realtime_o::torlan_o::database;
        QCOMPARE(database, realtime);
        QVERIFY(&database != &realtime);
        QCOMPARE(cnfserver::torlan_o::base + cnfserver::torlan_o::database,
                 QStringLiteral("torlan/database"));
    }
};

QTEST_GUILESS_MAIN(tst_cnfserver)
#include "tst_cnfserver.moc"
