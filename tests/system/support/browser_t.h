#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QProcess>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <functional>
#include <memory>

namespace support {

/// Debian's Chromium without a window, driven through two pipes: no port is opened that others on
/// this machine could reach. It is given pages of the test's own only.
class browser_t : public QObject {
    Q_OBJECT

 public:
    explicit browser_t(QObject* _parent = nullptr);
    ~browser_t() override;

    /// False and error(): it is not there, or does not start.
    bool start();
    QString error() const { return last_error; }
    qint64 pid() const { return process.processId(); }

    /// Calls a method of the DevTools protocol and waits; its "result", or {"failed": why}.
    /// @param _session of a page; empty: the browser itself
    QJsonObject call(const QString& _method, const QJsonObject& _parameters = {},
                     const QString& _session = {});

 Q_SIGNALS:
    /// Something that nobody has asked for.
    void event(const QString& session, const QString& method, const QJsonObject& parameters);

 private:
    void read();
    void take(const QJsonObject& _message);

    QTemporaryDir profile;
    QProcess process;
    std::unique_ptr<QSocketNotifier> notifier;
    int to_browser = -1;
    int from_browser = -1;
    int last_id = 0;
    QByteArray received;
    QHash<int, QJsonObject> answers;
    QString last_error;
};

}  // namespace support
