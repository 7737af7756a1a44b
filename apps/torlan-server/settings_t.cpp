#include "settings_t.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTimer>
#include <chrono>
#include <utility>

#include "build_facts.h"
#include "client_folder.h"
#include "http/http_t.h"
#include "logs/log_line.h"
#include "utility/cnfserver.h"
#include "utility/http_read_config_server_t.h"
#include "utility/torlan_option_t.h"
#include "utility/utility_t.h"

namespace torlan {

using utility::cnfserver;
using utility::http_read_config_server_t;
using utility::torlan_option_t;
using utility::utility_t;
using torlan_o = cnfserver::statics_o::torlan_o;

namespace {

constexpr const char* source = "apps/torlan-server/settings_t";
constexpr std::chrono::milliseconds again{200};
constexpr int probe_timeout_ms = 1000;

QJsonObject versions() {
    return {{QStringLiteral("libhttp"), http_t::LIBHTTP_VERSION},
            {QStringLiteral("qt"), QLatin1String(qVersion())}};
}

void take_log_levels(torlan_option_t* _options, const options_t& _given) {
    if (_given.stdout_level) {
        _options->set_log_level_std(*_given.stdout_level);
    }
    if (_given.file_level) {
        _options->set_log_level_file(*_given.file_level);
    }
    if (_given.log_size) {
        _options->set_log_size(*_given.log_size);
    }
    if (_given.log_rotate) {
        _options->set_log_rotate(*_given.log_rotate);
    }
}

}  // namespace

settings_t::settings_t(const options_t& _options, QObject* _parent)
    : QObject(_parent), options(_options) {
    torlan_option_t* const values = torlan_option_t::createInstance(
        QCoreApplication::instance(), QSysInfo::kernelType(),
        QCoreApplication::applicationVersion(), versions(), QLatin1String(build_branch),
        QLatin1String(build_commit), QLatin1String(build_time), nullptr);
    take_log_levels(values, options);
}

settings_t::~settings_t() {
    http_read_config_server_t::destroyInstance();
    torlan_option_t::destroyInstance();
}

QString settings_t::address() const {
    return QStringLiteral("http://127.0.0.1:%1/").arg(options.config_port);
}

QString settings_t::read() {
    if (!http_t::map_base(cnfserver::base, options.config_port)) {
        return QStringLiteral("The configuration server cannot be at %1.").arg(address());
    }
    if (const QString error = wait_for_document(); !error.isEmpty()) {
        return error;
    }
    // Before the reading, which writes the client file into the folder.
    make_client_folder(text_at(torlan_o::paths_o::client_communication.toString()));
    tell_clients(text_at(cnfserver::installation_o::installation_id.toString()));
    if (!http_read_config_server_t::createInstance(nullptr)->read_configuration()) {
        return QStringLiteral("The configuration server at %1 has no settings.").arg(address());
    }
    // A new id stands in the client file already; now also where clients read the settings.
    tell_clients(torlan_option_t::InstallationId());
    return {};
}

QString settings_t::text_at(const QString& _path) const {
    return utility_t::getJsonObjValue(document, _path).toString();
}

QString settings_t::wait_for_document() {
    http_t http(cnfserver::base, false);
    http.set_timeout(probe_timeout_ms);
    QElapsedTimer clock;
    clock.start();
    bool told = false;
    while (!is_given_up) {
        const httpresponse_t response = http.get(QString());
        if (response.getError() == 0) {
            document = response.getData().toObject();
            return {};
        }
        if (clock.elapsed() >= options.config_wait * 1000LL) {
            return QStringLiteral("The configuration server did not answer within %1 s: %2.")
                .arg(QString::number(options.config_wait), response.getErrorText());
        }
        if (!std::exchange(told, true)) {
            Q_EMIT waiting(QStringLiteral("waiting up to %1 s for the configuration server at %2")
                               .arg(QString::number(options.config_wait), address()));
        }
        pause();
    }
    return QStringLiteral("The start was broken off.");
}

void settings_t::pause() {
    QEventLoop loop;
    connect(this, &settings_t::given_up, &loop, &QEventLoop::quit);
    QTimer::singleShot(again, &loop, &QEventLoop::quit);
    loop.exec();
}

void settings_t::give_up() {
    is_given_up = true;
    Q_EMIT given_up();
}

// Local programs read this part of the settings, as the client file.
void settings_t::tell_clients(const QString& _installation_id) {
    const QString path = torlan_o::comunication.toString();
    const QJsonValue told = utility_t::getJsonObjValue(document, path);
    if (!told.isObject()) {
        return;
    }
    QJsonObject broker{{QStringLiteral("host"), QStringLiteral("127.0.0.1")},
                       {QStringLiteral("port"), options.port}};
    if (options.ws_port != 0) {
        broker.insert(QStringLiteral("ws_port"), options.ws_port);
    }
    if (told[QLatin1String("mqtt")].toObject() != broker) {
        put(path + QStringLiteral("mqtt"), broker);
    }
    const QJsonValue global = told[QLatin1String("global")];
    if (global.isObject() && !_installation_id.trimmed().isEmpty() &&
        global[QLatin1String("installation_id")] != _installation_id) {
        put(torlan_o::comunication_o::global_o::installation_id.toString(), _installation_id);
    }
}

void settings_t::put(const QString& _path, const QJsonValue& _value) {
    const httpresponse_t response = http_t(cnfserver::base, false).put(_path, _value);
    if (response.getError() != 0) {
        utility::log_line(
            QStringLiteral("The settings do not take %1: %2").arg(_path, response.getErrorText()),
            2, __func__, source, __LINE__);
        return;
    }
    QJsonDocument changed(document);
    utility_t::updateJsonValue(changed, _path, _value);
    document = changed.object();
}

utility::logs::log_settings_t settings_t::log(const QString& _folder) const {
    utility::logs::log_settings_t log;
    const QString folder = torlan_option_t::LogsFolder();
    log.folder = folder.isEmpty() ? _folder : folder;
    log.name = torlan_option_t::LogFileName();
    log.size_mb = static_cast<int>(torlan_option_t::LogSize());
    log.rotation = static_cast<int>(torlan_option_t::LogRotate());
    log.stdout_level = static_cast<int>(torlan_option_t::LogLevelStd());
    log.file_level = static_cast<int>(torlan_option_t::LogLevelFile());
    return log;
}

QString settings_t::plugin_folder() const {
    if (!options.plugins.isEmpty()) {
        return options.plugins;
    }
    const QString folder = torlan_option_t::PluginFolder();
    return folder.isEmpty() ? QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                              QStringLiteral("/../lib/drivers"))
                            : folder;
}

int settings_t::save_delay_ms() const {
    return torlan_option_t::DelayToSave();
}

int settings_t::save_iterations() const {
    return torlan_option_t::DelayIterationToForceSave();
}

}  // namespace torlan
