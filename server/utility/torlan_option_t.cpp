#include "utility/torlan_option_t.h"

#include <QCoreApplication>
#include <QTranslator>

#include "utility/torlan_option_t_log.h"

namespace utility {

std::atomic<torlan_option_t*> torlan_option_t::instance = nullptr;
base::mutex_t torlan_option_t::mutex;
QCoreApplication* torlan_option_t::app = nullptr;
QMap<QString, QTranslator*> torlan_option_t::traslators;

torlan_option_t* torlan_option_t::createInstance(QCoreApplication* _app, const QString& _platform,
                                                 const QString& _version,
                                                 const QJsonObject& _versions,
                                                 const QString& _build_branch,
                                                 const QString& _build_commit,
                                                 const QString& _build_time, QObject* _parent) {
    const base::mutex_locker_t locker(&mutex);
    if (instance == nullptr) {
        instance = new torlan_option_t(_parent);
    }
    torlan_option_t* const options = instance;
    app = _app;
    options->platform = _platform;
    options->version = _version;
    options->versions = _versions;
    options->build_branch = _build_branch;
    options->build_commit = _build_commit;
    options->build_time = _build_time;
    read_language();
    read_manufacture();
    read_brand();
    read_image_version();
    setDefaultOption();
    return options;
}

torlan_option_t* torlan_option_t::getInstance() {
    const base::mutex_locker_t locker(&mutex);
    return instance;
}

void torlan_option_t::destroyInstance() {
    const base::mutex_locker_t locker(&mutex);
    delete instance.load();
    instance = nullptr;
}

torlan_option_t::torlan_option_t(QObject* _parent) : QObject(_parent) {}

torlan_option_t::~torlan_option_t() {
    // Also when the Qt parent destroys the object. The event that an object posts to itself here
    // goes with it.
    if (torlan_option_t* const options = instance.exchange(nullptr)) {
        options->deleteLater();
    }
}

void torlan_option_t::setDefaultOption() {
    torlan_option_t* const options = instance;
    if (options == nullptr) {
        return;
    }
    options->log_level_std = 4;
    options->log_level_file = 5;
    options->log_size = 25;
    options->log_rotate = 5;
    options->log_file_name = QStringLiteral("server-torlan");
    options->avahi_browse = false;
    options->delay_to_save = 500;
    options->delay_iteration_to_force_save = 5;
    options->update_date_time_to_database = 600;
    options->level_bus_monitor = 0;
    options->configuration_mode = type_configuration_mode_t::http;
}

bool torlan_option_t::installTranslator(QTranslator* _translator, const QString& _language,
                                        const QString& _name) {
    if (!QCoreApplication::installTranslator(_translator)) {
        log_option(QStringLiteral("Failed to install translation for %1 langauge %2")
                       .arg(_name, _language),
                   3, __func__, __LINE__);
        log_option(QStringLiteral("Loading translation for default language"), 2, __func__,
                   __LINE__);
        return false;
    }
    traslators[_name] = _translator;
    log_option(QStringLiteral("Loaded translation for ") + _name +
                   QStringLiteral(" for language: ") + _language,
               4, __func__, __LINE__);
    return true;
}

bool torlan_option_t::removeTranslator(const QString& _name, QTranslator* _translator) {
    if (!traslators.contains(_name)) {
        return false;
    }
    QCoreApplication::removeTranslator(_translator);
    traslators.remove(_name);
    return true;
}

bool torlan_option_t::update_traslator(const QString& _name, QTranslator* _translator) {
    removeTranslator(_name, _translator);
    return installTranslator(_translator, Language(), _name);
}

QMap<QString, QTranslator*> torlan_option_t::Traslators() {
    return traslators;
}

}  // namespace utility
