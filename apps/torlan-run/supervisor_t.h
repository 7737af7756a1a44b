#pragma once

#include <QObject>

#include <memory>

#include "child_link_t.h"
#include "console_child_t.h"
#include "knx_demo_t.h"
#include "options_t.h"
#include "process/supervised_process_t.h"

namespace torlan {

/// The programs of an installation: the configuration server, then, when that is ready, the
/// console's, which nothing depends on, then the server; all brought back when they die after they
/// were once ready, and ended together. With a KNX bus to try it on, where one is asked for. Main
/// thread, with an event loop.
class supervisor_t : public QObject {
    Q_OBJECT

 public:
    /// @param _web nothing: no console
    /// @param _programs folder of them all
    /// @param _settings file of the settings
    supervisor_t(const options_t& _options, const std::optional<web_t>& _web,
                 const QString& _programs, const QString& _settings, QObject* _parent = nullptr);

    /// ended() may come before this returns.
    void start();

    /// Ends all, blocking: the server has 30 s to save, the configuration server 5.
    /// @return how: 0, or the server's status when that tells of something it could not save
    int stop();

    /// The installation has once been ready.
    bool was_ready() const { return served; }
    /// stop() was called by somebody else.
    bool was_stopped() const { return stopped; }

 Q_SIGNALS:
    /// All have ended without being asked to, and none is started again. @p status as of a
    /// program.
    void ended(int status);
    /// Something that somebody should know; one sentence.
    void told(const QString& sentence);

 private:
    process::child_settings_t settings_of(const QString& _program, const QStringList& _arguments,
                                          const child_link_t& _link) const;
    void set_up_connections();
    void set_up_demo();
    void start_config();
    QStringList server_arguments() const;
    QStringList console_arguments() const;
    void launch_server();
    void on_config_ready();
    void on_server_ready();
    void on_config_failed(const QString& _last_words);
    void on_config_died();
    void on_server_failed(const QString& _last_words);
    void on_server_died();
    void finish(int _status);
    int end_all();

    const options_t options;
    const std::optional<web_t> web;
    const QString programs;
    const QString settings;
    bool served = false;
    bool stopped = false;
    bool is_finished = false;   ///< ended() was told
    qint64 server_process = 0;  ///< of its last launch
    child_link_t config_link;
    child_link_t server_link;
    console_child_t console;
    // Ended before the links close.
    process::supervised_process_t config;
    process::supervised_process_t server;
    std::unique_ptr<knx_demo_t> demo;  ///< null: none is asked for
};

}  // namespace torlan
