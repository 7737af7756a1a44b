#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "system/support/config_process_t.h"

namespace support {

/// A torlan-server of the test's own: a temporary data folder, a free loopback port, its own
/// configuration server.
class host_process_t {
 public:
    host_process_t();
    ~host_process_t();

    /// Writes @p _installation into the data folder with torlanctl; false and error() when refused.
    bool import(const QJsonObject& _installation);
    /// Starts both servers, and waits for the "torlan:
    /// ready" line.
    bool start(const QStringList& _more_arguments = {});
    /// Asks it to end (SIGTERM) and waits; its exit status, -1 when it had to be killed.
    int stop();
    /// Ends its configuration server, until it is started again.
    void stop_config() { config.reset(); }
    /// Runs torlanctl on the data folder; its exit status.
    int control(const QStringList& _arguments, const QByteArray& _input = {});

    /// The settings' file in the data folder.
    QString settings_file() const { return folder.filePath(QStringLiteral("settings.json")); }
    /// Settings to start with; without, the file's, or none.
    void use_settings(const QJsonObject& _settings);

    quint16 port() const { return broker_port; }
    /// Of its configuration server.
    quint16 config_port() const { return config ? config->port() : 0; }
    QString data() const { return folder.path(); }
    qint64 pid() const { return server.processId(); }
    bool is_running() const { return server.state() == QProcess::Running; }
    /// What the last program that failed said on standard error.
    QString error() const { return last_error; }
    QByteArray control_output() const { return last_output; }
    /// Resident set of the server in MiB.
    int resident_mib() const { return resident_mib_of(pid()); }
    /// Of any process; -1: there is none.
    static int resident_mib_of(qint64 _pid);
    /// Process id of the server's broker child; 0 when there is none.
    qint64 broker_pid() const;
    QProcess& process() { return server; }
    /// Standard output up to and with the ready line.
    QByteArray start_output() const { return shown; }

 private:
    QTemporaryDir folder;
    std::unique_ptr<config_process_t> config;
    QProcess server;
    quint16 broker_port;
    QString last_error;
    QByteArray last_output;
    QByteArray shown;
};

}  // namespace support
