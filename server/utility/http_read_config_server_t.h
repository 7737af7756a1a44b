#pragma once

#include <QJsonObject>
#include <QObject>
#include <atomic>

#include "base/locks.h"

class http_t;

namespace utility {

class torlan_option_t;

/// Client of the local configuration server: fills the options at start-up.
///
/// Create the options before this object. Calls block on HTTP; use it from one thread, before
/// other threads read the options.
class http_read_config_server_t : public QObject {
    Q_OBJECT

 public:
    /// The object there is, or a new one; @p parent counts for a new one only. Any thread.
    static http_read_config_server_t* createInstance(QObject* parent);
    static http_read_config_server_t* getInstance(QObject* parent);
    static void destroyInstance();

    explicit http_read_config_server_t(QObject* parent);
    /// Clears the instance.
    ~http_read_config_server_t() override;
    Q_DISABLE_COPY_MOVE(http_read_config_server_t)

    /// Reads the whole document, copies the settings into the options, makes sure that there is
    /// an installation id and writes the client communication file. False, with the options
    /// untouched: no document (logged). Missing settings become empty.
    bool read_configuration();

    /// The id to use: @p installation_id, or, when that is blank, a new one that is stored on the
    /// server and in @p config. Ends the process with status 0 when it cannot be stored.
    QString check_HTTP_InstallationId(QJsonObject& config, http_t* http, QString installation_id);

    /// Writes the document's communication settings for other local programs, readable by all.
    void generate_HTTP_ClientFileConfig(QJsonObject config);

 private:
    static std::atomic<http_read_config_server_t*> instance;
    static base::mutex_t mutex;  ///< guards creation and destruction of the instance

    void copy_settings(const QJsonObject& _config);

    [[maybe_unused]] bool flag = false;
    torlan_option_t* options;  ///< as they were at construction; not owned
    http_t* http;
};

}  // namespace utility
