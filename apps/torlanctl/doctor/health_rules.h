#pragma once

#include <sys/types.h>

#include <QDateTime>
#include <QJsonObject>
#include <chrono>

#include "doctor/finding_t.h"

/// What numbers and answers mean. Pure.
namespace torlan::health_rules {

/// Room of the file system that has a folder.
finding_t disk(const QString& _folder, qint64 _free, qint64 _total, bool _is_read_only);

/// A file or folder that holds secrets: nobody else may read it. @p _name without its folder.
finding_t secret(const QString& _name, mode_t _mode);

/// Now, by the clock of the machine.
struct clock_t {
    QDateTime now;
    bool is_synchronised = true;
    /// How long a process runs by the clock, and how long by the machine's own count: they differ
    /// when the clock was set meanwhile.
    std::chrono::seconds by_clock{0};
    std::chrono::seconds by_machine{0};
};
findings_t clock(const clock_t& _clock);

/// The document of the settings, as it is in its file.
findings_t settings(const QByteArray& _document);

/// The versions of this program and of the server that runs.
finding_t version(const QString& _own, const QString& _server);

/// What "mosquitto -h" has said; empty: there is none.
finding_t broker_version(const QByteArray& _said);

/// A port that the server listens on. @p _holder as of port_holder().
/// @param _process of whom it should be; 0: nobody knows
finding_t port(const QString& _use, quint16 _port, const QString& _holder, qint64 _process);

/// "server" and "broker" of a status.
findings_t server(const QJsonObject& _status);

/// The server's count of retained states, see retained_check_t.
finding_t retained(const QJsonObject& _answer);

}  // namespace torlan::health_rules
