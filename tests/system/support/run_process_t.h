#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace support {

/// What ./run ends in: torlan-run with everything that belongs to it, console included, in a folder
/// and on ports of the test's own.
class run_process_t {
 public:
    run_process_t();
    ~run_process_t();

    /// With the installation in @p _home, a file; waits until it is ready. Again after an end.
    bool start(const QString& _home, const QStringList& _more_arguments = {});
    /// SIGTERM; its exit status, -1: it had to be killed.
    int stop();
    /// Runs torlanctl; its exit status.
    int control(const QStringList& _arguments, const QByteArray& _input = {});

    /// Where the page is, as it was told beside "torlan: ready".
    QString console() const { return address; }
    quint16 port() const { return broker_port; }
    quint16 config_port() const { return config; }
    /// Of the console.
    quint16 web_port() const { return web; }
    quint16 ws_port() const { return websocket; }
    QString data() const { return folder.filePath(QStringLiteral("home")); }
    QProcess& process() { return program; }
    /// Child, and child's child, by program name; 0: there is none.
    qint64 descendant(const QString& _name) const;
    /// All of them.
    QList<qint64> descendants() const;
    QByteArray shown() const { return output; }

 private:
    QTemporaryDir folder;
    QProcess program;
    const quint16 broker_port;
    const quint16 config;
    const quint16 web;
    const quint16 websocket;
    QByteArray output;
    QString address;
};

}  // namespace support
