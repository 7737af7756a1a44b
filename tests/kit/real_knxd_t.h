#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>

#include "kit/wait_until.h"

namespace kit {

/// A private knxd on a unix socket, with no bus behind it: what its clients send they hear.
class real_knxd_t {
 public:
    enum class cache_t { without, with };

    explicit real_knxd_t(cache_t _cache) : cache(_cache) {}
    ~real_knxd_t() { end(); }
    Q_DISABLE_COPY_MOVE(real_knxd_t)

    QString socket() const { return folder.filePath(QStringLiteral("knxd")); }
    QString url() const { return QStringLiteral("local:") + socket(); }

    /// True once it takes clients.
    bool start() {
        QStringList arguments{"-e", "0.0.1", "-E", "0.0.2:8", "-u", socket()};
        if (cache == cache_t::with) {
            arguments.append("-c");
        }
        process.start("knxd", arguments + QStringList{"-b", "dummy:"});
        return process.waitForStarted() && wait_until([this]() { return QFile::exists(socket()); });
    }
    /// Kills it.
    void end() {
        process.kill();
        process.waitForFinished();
        QFile::remove(socket());
    }
    /// Stops its clock, or lets it go on.
    void hold(bool _hold) { ::kill(pid_t(process.processId()), _hold ? SIGSTOP : SIGCONT); }

    /// Another program on the same bus: "groupswrite", {"1/1/1", "1"}.
    bool tool(const QString& _applet, const QStringList& _arguments) const {
        return QProcess::execute("knxtool", QStringList{_applet, url()} + _arguments) == 0;
    }

 private:
    const cache_t cache;
    QTemporaryDir folder;
    QProcess process;
};

/// Another program that listens: a line for each telegram.
class bus_listener_t {
 public:
    explicit bus_listener_t(const real_knxd_t& _knxd) {
        process.start("stdbuf", {"-oL", "knxtool", "groupsocketlisten", _knxd.url()});
        process.waitForStarted();
    }
    ~bus_listener_t() {
        process.kill();
        process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(bus_listener_t)

    /// Everything that it has heard.
    QString heard() {
        text += QString::fromUtf8(process.readAllStandardOutput());
        return text;
    }

 private:
    QProcess process;
    QString text;
};

}  // namespace kit
