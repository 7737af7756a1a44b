#pragma once

#include <QJsonObject>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <atomic>

#include "base/locks.h"
#include "database/definition/type_brand_t.h"
#include "utility/type_configuration_mode_t.h"

class QCoreApplication;
class QTranslator;

namespace utility {

/// The process-wide options: what the host program hands in at start, what the device tells
/// (`getprop`), what the configuration server holds, fixed defaults, and the installed translators.
///
/// Getters return copies, read the one instance without a lock and give empty values before
/// createInstance(). Options are written at start-up, before other threads read them.
class torlan_option_t : public QObject {
    Q_OBJECT

 public:
    using type_brand_t = database::definition::type_brand_t;

    /// Makes the instance, or overwrites the one there is, reads the device facts (up to 2 s each)
    /// and sets the defaults. Keeps the object and its testing flag on a repeated call.
    static torlan_option_t* createInstance(QCoreApplication* app, const QString& platform,
                                           const QString& version, const QJsonObject& versions,
                                           const QString& build_branch, const QString& build_commit,
                                           const QString& build_time, QObject* parent);
    /// Null before createInstance(); waits while that runs.
    static torlan_option_t* getInstance();
    static void destroyInstance();

    explicit torlan_option_t(QObject* parent);
    /// Clears the instance.
    ~torlan_option_t() override;
    Q_DISABLE_COPY_MOVE(torlan_option_t)

    static QString Platform();
    static QString Manufacturer();
    static QString Language();  ///< "it_IT", "en_EN": the language twice, never the region
    static QString ProductName();
    static QString CloudService();
    static QString CloudWeb();
    static QString CloudMQTTUrl();
    static QString Version();
    static QJsonObject Versions();
    static QString BuildBranch();
    static QString BuildCommit();
    static QString BuildTime();
    static type_brand_t Brand();
    static QString ImageVersion();
    static QStringList ImageVersions();  ///< ImageVersion() split at "-"
    static QString PluginFolder();
    static QString SystemCaCerts();
    static QString ClientFolder();
    static QStringList CaCertsFile();
    static QString InstallationId();
    static QString Serial();
    static int LevelBusMonitor();
    static bool Avahi_browse_option();
    static unsigned int LogLevelStd();
    static unsigned int LogLevelFile();
    static unsigned int LogSize();  ///< megabytes
    static unsigned int LogRotate();
    static QString LogFileName();
    static QString LogsFolder();
    static int DelayToSave();  ///< milliseconds
    static int DelayIterationToForceSave();
    static int UpdateDateTimeToDatabase();  ///< seconds
    static type_configuration_mode_t ConfigurationMode();

    /// Log, timing and bus monitor settings as shipped. Leaves the testing flag alone.
    static void setDefaultOption();
    void set_log_level_std(unsigned int _level);
    void set_log_level_file(unsigned int _level);
    void set_log_size(unsigned int _megabytes);
    void set_log_rotate(unsigned int _files);
    void set_level_bus_monitor(int _level);
    void set_avahi_browse_option(bool _browse);
    void set_special_fuction_for_testing(bool _on);

    /// Read one device fact again; a failure takes the fallback and is logged. A new language
    /// removes every installed translator.
    static QString read_language();
    static QString read_manufacture();
    static type_brand_t read_brand();
    static QStringList read_image_version();

    /// Translators are the caller's; this class installs, records and removes them.
    static bool installTranslator(QTranslator* translator, const QString& language,
                                  const QString& name);
    /// Removes @p translator from the application and @p name from the record. False: unknown name.
    static bool removeTranslator(const QString& name, QTranslator* translator);
    static bool update_traslator(const QString& name, QTranslator* translator);
    static QMap<QString, QTranslator*> Traslators();

    /// Writes the options and the linked resources to the log.
    static void print();
    /// Lists a resource folder. @p depth grows with every folder visited, not with nesting. Not
    /// for folders on disk: "." and ".." are followed.
    static void print_dir(QString path, int& depth);

 private:
    friend class http_read_config_server_t;  // copies the configuration server's settings in

    template <class T>
    static T value(T torlan_option_t::*_field, const T& _empty);

    static std::atomic<torlan_option_t*> instance;
    static base::mutex_t mutex;  ///< guards creation and destruction of the instance
    static QCoreApplication* app;
    static QMap<QString, QTranslator*> traslators;  ///< by name, not owned
    inline static const QString default_language = QStringLiteral("en_EN");
    inline static const QString unknown_language = QStringLiteral("unknown");

    QString platform;
    QString manufacturer;
    QString language;
    QString product_name;
    QString cloud_service;
    QString cloud_web;
    QString cloud_mqtt_url;
    QString version;
    QJsonObject versions;
    QString build_branch;
    QString build_commit;
    QString build_time;
    type_brand_t brand = type_brand_t::KELMA;
    QString image_version;
    QStringList image_versions;
    QString plugin_folder;
    QString system_ca_certs;
    QString client_folder;
    QStringList ca_certs_file;
    QString installation_id;
    QString serial;
    int level_bus_monitor = 0;
    bool avahi_browse = false;
    bool special_function_for_testing = false;
    unsigned int log_level_std = 0;
    unsigned int log_level_file = 0;
    unsigned int log_size = 0;
    unsigned int log_rotate = 0;
    QString log_file_name;
    QString logs_folder;
    int delay_to_save = 0;
    int delay_iteration_to_force_save = 0;
    int update_date_time_to_database = 0;
    type_configuration_mode_t configuration_mode = type_configuration_mode_t::http;
};

}  // namespace utility
