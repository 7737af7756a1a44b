// Every constant of the tree in one place: they are constructed in this order.
#include "utility/cnfserver.h"

namespace utility {

const QString cnfserver::base = server_url;
const cnfserver cnfserver::trigger{"?runtriggers=true"};

const QString cnfserver::installation_o::base = QStringLiteral("installation/");
const cnfserver::installation_o cnfserver::installation_o::installation_id{"installation_id"};
const cnfserver::installation_o cnfserver::installation_o::mqtt_devices{"mqtt_devices"};
const cnfserver::installation_o cnfserver::installation_o::cloud_enabled{"cloud_enabled"};
const cnfserver::installation_o cnfserver::installation_o::master_version{"master_version"};
const cnfserver::installation_o cnfserver::installation_o::master{"master"};
const cnfserver::installation_o cnfserver::installation_o::master_model{"master_model"};

const QString cnfserver::installation_o::cloud_o::base = QStringLiteral("cloud/");
const cnfserver::installation_o::cloud_o cnfserver::installation_o::cloud_o::cloud_api_token{
    "cloud_api_token"};

const QString cnfserver::statics_o::base = QStringLiteral("static/");

const QString cnfserver::statics_o::drdconf_o::base = QStringLiteral("drdconf/");
const cnfserver::statics_o::drdconf_o cnfserver::statics_o::drdconf_o::serial{"serial"};

const QString cnfserver::statics_o::device_o::base = QStringLiteral("device/");
const cnfserver::statics_o::device_o cnfserver::statics_o::device_o::product_code{"product_code"};
const cnfserver::statics_o::device_o cnfserver::statics_o::device_o::product_name{"product_name"};
const cnfserver::statics_o::device_o cnfserver::statics_o::device_o::version{"version"};

const QString cnfserver::statics_o::torlan_o::base = QStringLiteral("torlan/");
const cnfserver::statics_o::torlan_o cnfserver::statics_o::torlan_o::comunication{"comunication"};
const cnfserver::statics_o::torlan_o cnfserver::statics_o::torlan_o::zeroconf{"zeroconf"};

const QString cnfserver::statics_o::torlan_o::comunication_o::base =
    QStringLiteral("comunication/");

const QString cnfserver::statics_o::torlan_o::comunication_o::global_o::base =
    QStringLiteral("global/");
const cnfserver::statics_o::torlan_o::comunication_o::global_o
    cnfserver::statics_o::torlan_o::comunication_o::global_o::installation_id{"installation_id"};

const QString cnfserver::statics_o::torlan_o::paths_o::base = QStringLiteral("paths/");
const cnfserver::statics_o::torlan_o::paths_o cnfserver::statics_o::torlan_o::paths_o::cacerts{
    "cacerts"};
const cnfserver::statics_o::torlan_o::paths_o cnfserver::statics_o::torlan_o::paths_o::plugins{
    "plugins"};
const cnfserver::statics_o::torlan_o::paths_o cnfserver::statics_o::torlan_o::paths_o::logs{"logs"};
const cnfserver::statics_o::torlan_o::paths_o
    cnfserver::statics_o::torlan_o::paths_o::client_communication{"client_communication"};
const cnfserver::statics_o::torlan_o::paths_o
    cnfserver::statics_o::torlan_o::paths_o::system_ca_certs{"system_ca_certs"};

const QString cnfserver::statics_o::torlan_o::urls_o::base = QStringLiteral("urls/");
const cnfserver::statics_o::torlan_o::urls_o cnfserver::statics_o::torlan_o::urls_o::cloud_service{
    "cloud_service"};
const cnfserver::statics_o::torlan_o::urls_o cnfserver::statics_o::torlan_o::urls_o::cloud_web{
    "cloud_web"};

const QString cnfserver::statics_o::mosquitto_o::base = QStringLiteral("mosquitto/");
const cnfserver::statics_o::mosquitto_o cnfserver::statics_o::mosquitto_o::mqtt_cloud_url{
    QStringLiteral("mqtt_cloud_url")};

const QString cnfserver::realtime_o::base = QStringLiteral("realtime/");

const QString cnfserver::realtime_o::torlan_o::base = QStringLiteral("torlan/");
const cnfserver::realtime_o::torlan_o cnfserver::realtime_o::torlan_o::database{"database"};

const QString cnfserver::realtime_o::torlan_o::database_o::base = QStringLiteral("database/");
const cnfserver::realtime_o::torlan_o::database_o
    cnfserver::realtime_o::torlan_o::database_o::installation{"installation"};

const QString cnfserver::torlan_o::base = QStringLiteral("torlan/");
const cnfserver::torlan_o cnfserver::torlan_o::database{"database"};
const cnfserver::torlan_o cnfserver::torlan_o::presencesimulation{"presencesimulation"};
const cnfserver::torlan_o cnfserver::torlan_o::preserved_realtime{"preserved_realtime"};
const cnfserver::torlan_o cnfserver::torlan_o::baos_stick_params{"baos_stick_params"};

QString cnfserver::installation_o::toString() const {
    return installation_o::base + key;
}

QString cnfserver::statics_o::drdconf_o::toString() const {
    return statics_o::base + drdconf_o::base + key + QLatin1Char('/');
}

QString cnfserver::statics_o::device_o::toString() const {
    return statics_o::base + device_o::base + key + QLatin1Char('/');
}

QString cnfserver::statics_o::torlan_o::toString() const {
    return statics_o::base + torlan_o::base + key + QLatin1Char('/');
}

QString cnfserver::statics_o::torlan_o::comunication_o::global_o::toString() const {
    return statics_o::base + torlan_o::base + comunication_o::base + global_o::base + key +
           QLatin1Char('/');
}

QString cnfserver::statics_o::torlan_o::paths_o::toString() const {
    return statics_o::base + torlan_o::base + paths_o::base + key + QLatin1Char('/');
}

QString cnfserver::statics_o::torlan_o::urls_o::toString() const {
    return statics_o::base + torlan_o::base + urls_o::base + key + QLatin1Char('/');
}

QString cnfserver::statics_o::mosquitto_o::toString() const {
    return statics_o::base + mosquitto_o::base + key + QLatin1Char('/');
}

}  // namespace utility
