// Getters.
#include "utility/torlan_option_t.h"

namespace utility {

template <class T>
T torlan_option_t::value(T torlan_option_t::*_field, const T& _empty) {
    const torlan_option_t* options = instance;
    return options == nullptr ? _empty : options->*_field;
}

QString torlan_option_t::Platform() {
    return value(&torlan_option_t::platform, {});
}

QString torlan_option_t::Manufacturer() {
    return value(&torlan_option_t::manufacturer, {});
}

QString torlan_option_t::Language() {
    return value(&torlan_option_t::language, {});
}

QString torlan_option_t::ProductName() {
    return value(&torlan_option_t::product_name, {});
}

QString torlan_option_t::CloudService() {
    return value(&torlan_option_t::cloud_service, {});
}

QString torlan_option_t::CloudWeb() {
    return value(&torlan_option_t::cloud_web, {});
}

QString torlan_option_t::CloudMQTTUrl() {
    return value(&torlan_option_t::cloud_mqtt_url, {});
}

QString torlan_option_t::Version() {
    return value(&torlan_option_t::version, {});
}

QJsonObject torlan_option_t::Versions() {
    return value(&torlan_option_t::versions, {});
}

QString torlan_option_t::BuildBranch() {
    return value(&torlan_option_t::build_branch, {});
}

QString torlan_option_t::BuildCommit() {
    return value(&torlan_option_t::build_commit, {});
}

QString torlan_option_t::BuildTime() {
    return value(&torlan_option_t::build_time, {});
}

torlan_option_t::type_brand_t torlan_option_t::Brand() {
    return value(&torlan_option_t::brand, type_brand_t::KELMA);
}

QString torlan_option_t::ImageVersion() {
    return value(&torlan_option_t::image_version, {});
}

QStringList torlan_option_t::ImageVersions() {
    return value(&torlan_option_t::image_versions, {});
}

QString torlan_option_t::PluginFolder() {
    return value(&torlan_option_t::plugin_folder, {});
}

QString torlan_option_t::SystemCaCerts() {
    return value(&torlan_option_t::system_ca_certs, {});
}

QString torlan_option_t::ClientFolder() {
    return value(&torlan_option_t::client_folder, {});
}

QStringList torlan_option_t::CaCertsFile() {
    return value(&torlan_option_t::ca_certs_file, {});
}

QString torlan_option_t::InstallationId() {
    return value(&torlan_option_t::installation_id, {});
}

QString torlan_option_t::Serial() {
    return value(&torlan_option_t::serial, {});
}

int torlan_option_t::LevelBusMonitor() {
    return value(&torlan_option_t::level_bus_monitor, {});
}

bool torlan_option_t::Avahi_browse_option() {
    return value(&torlan_option_t::avahi_browse, {});
}

unsigned int torlan_option_t::LogLevelStd() {
    return value(&torlan_option_t::log_level_std, {});
}

unsigned int torlan_option_t::LogLevelFile() {
    return value(&torlan_option_t::log_level_file, {});
}

unsigned int torlan_option_t::LogSize() {
    return value(&torlan_option_t::log_size, {});
}

unsigned int torlan_option_t::LogRotate() {
    return value(&torlan_option_t::log_rotate, {});
}

QString torlan_option_t::LogFileName() {
    return value(&torlan_option_t::log_file_name, {});
}

QString torlan_option_t::LogsFolder() {
    return value(&torlan_option_t::logs_folder, {});
}

int torlan_option_t::DelayToSave() {
    return value(&torlan_option_t::delay_to_save, {});
}

int torlan_option_t::DelayIterationToForceSave() {
    return value(&torlan_option_t::delay_iteration_to_force_save, {});
}

int torlan_option_t::UpdateDateTimeToDatabase() {
    return value(&torlan_option_t::update_date_time_to_database, {});
}

type_configuration_mode_t torlan_option_t::ConfigurationMode() {
    return value(&torlan_option_t::configuration_mode, type_configuration_mode_t::http);
}

}  // namespace utility
