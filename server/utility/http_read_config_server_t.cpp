#include "utility/http_read_config_server_t.h"

#include <QJsonArray>
#include <cstdlib>

#include "http/http_t.h"
#include "logs/log_line.h"
#include "utility/cnfserver.h"
#include "utility/torlan_option_t.h"
#include "utility/utility_t.h"

namespace utility {

namespace {

using torlan_o = cnfserver::statics_o::torlan_o;

void log_client(const QString& _message, int _level, const char* _function, int _line) {
    log_line(_message, _level, _function, "server/utility/http_read_config_server_t", _line);
}

/// Empty when the setting is missing or no text.
QString text_at(const QJsonObject& _config, const QString& _path) {
    return utility_t::getJsonObjValue(_config, _path).toString();
}

}  // namespace

std::atomic<http_read_config_server_t*> http_read_config_server_t::instance = nullptr;
base::mutex_t http_read_config_server_t::mutex;

http_read_config_server_t::http_read_config_server_t(QObject* _parent)
    : QObject(_parent),
      options(torlan_option_t::getInstance()),
      http(new http_t(cnfserver::base, false, this)) {}

http_read_config_server_t::~http_read_config_server_t() {
    if (http != nullptr) {
        http->deleteLater();
        http = nullptr;
    }
    // Also when the Qt parent destroys the object. The event that an object posts to itself here
    // goes with it.
    if (http_read_config_server_t* const client = instance.exchange(nullptr)) {
        client->deleteLater();
    }
}

http_read_config_server_t* http_read_config_server_t::createInstance(QObject* _parent) {
    const base::mutex_locker_t locker(&mutex);
    if (instance == nullptr) {
        instance = new http_read_config_server_t(_parent);
    }
    return instance;
}

http_read_config_server_t* http_read_config_server_t::getInstance(QObject* _parent) {
    if (http_read_config_server_t* const client = instance) {
        return client;
    }
    return createInstance(_parent);
}

void http_read_config_server_t::destroyInstance() {
    const base::mutex_locker_t locker(&mutex);
    delete instance.load();
    instance = nullptr;
}

bool http_read_config_server_t::read_configuration() {
    const QString wrong = QStringLiteral("Config server - wrong reponse to ") + cnfserver::base;
    const httpresponse_t response = http->get(QString());
    if (response.getError() != 0) {
        log_client(wrong, 0, __func__, __LINE__);
        return false;
    }
    QJsonObject config = response.getData().toObject();
    if (config.isEmpty()) {
        log_client(wrong + QStringLiteral(" json is empty"), 0, __func__, __LINE__);
        return false;
    }
    if (options == nullptr || options != torlan_option_t::instance) {
        log_client(QStringLiteral("Config server - no options to fill"), 0, __func__, __LINE__);
        return false;
    }
    copy_settings(config);
    options->installation_id = check_HTTP_InstallationId(
        config, http, text_at(config, cnfserver::installation_o::installation_id.toString()));
    generate_HTTP_ClientFileConfig(config);
    return true;
}

void http_read_config_server_t::copy_settings(const QJsonObject& _config) {
    using statics_o = cnfserver::statics_o;
    options->logs_folder = text_at(_config, torlan_o::paths_o::logs.toString());
    options->plugin_folder = text_at(_config, torlan_o::paths_o::plugins.toString());
    options->system_ca_certs = text_at(_config, torlan_o::paths_o::system_ca_certs.toString());

    options->ca_certs_file.clear();
    const QJsonArray certificates =
        utility_t::getJsonObjValue(_config, torlan_o::paths_o::cacerts.toString()).toArray();
    for (const QJsonValue& certificate : certificates) {
        options->ca_certs_file.append(certificate.toString());
    }

    options->client_folder = text_at(_config, torlan_o::paths_o::client_communication.toString());
    options->serial = text_at(_config, statics_o::drdconf_o::serial.toString());
    options->product_name = text_at(_config, statics_o::device_o::product_name.toString());
    options->cloud_service = text_at(_config, torlan_o::urls_o::cloud_service.toString());
    options->cloud_web = text_at(_config, torlan_o::urls_o::cloud_web.toString());
    options->cloud_mqtt_url = text_at(_config, statics_o::mosquitto_o::mqtt_cloud_url.toString());
}

QString http_read_config_server_t::check_HTTP_InstallationId(QJsonObject& config, http_t* _http,
                                                             QString installation_id) {
    if (!installation_id.trimmed().isEmpty()) {
        return installation_id;
    }
    log_client(QStringLiteral("Generate new installation_id"), 6, __func__, __LINE__);
    installation_id = utility_t::generateInstallationId();
    log_client(QStringLiteral("Save new instalaltion_id in config server: ") + installation_id, 6,
               __func__, __LINE__);
    const QString path = cnfserver::installation_o::installation_id.toString();
    if (_http->put(path + cnfserver::trigger, installation_id).getError() != 0) {
        log_client(QStringLiteral("Unable to genarate installation id ..."), 0, __func__, __LINE__);
        // The server does not run without a stored id. Supervisors know the status 0: keep it.
        std::exit(0);
    }
    QJsonDocument document(config);
    utility_t::updateJsonValue(document, path, installation_id);
    utility_t::updateJsonValue(
        document, torlan_o::comunication_o::global_o::installation_id.toString(), installation_id);
    config = document.object();
    return installation_id;
}

void http_read_config_server_t::generate_HTTP_ClientFileConfig(QJsonObject config) {
    const QString path =
        torlan_option_t::ClientFolder() + QStringLiteral("/config/comunication.json");
    const QJsonObject payload =
        utility_t::getJsonObjValue(config, torlan_o::comunication.toString()).toObject();
    log_client(QStringLiteral("Save client configuration file to: ") + path, 4, __func__, __LINE__);
    if (!utility_t::writeToFile(path, payload,
                                QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                    QFileDevice::ReadUser | QFileDevice::ReadGroup |
                                    QFileDevice::ReadOther)) {
        log_client(QStringLiteral("Error to craete mqtt configuration client ") + path, 2, __func__,
                   __LINE__);
    }
}

}  // namespace utility
