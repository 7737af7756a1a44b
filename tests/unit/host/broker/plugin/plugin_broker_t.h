#pragma once

#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>

#include "kit/raw_mqtt_t.h"

/// The real broker with the plugin, and the host's connection to it.
class plugin_broker_t {
 public:
    /// Path of the plugin.
    static QByteArray library();
    /// "$7$..." for @p _password, @p _iterations times.
    static QByteArray hash(const QByteArray& _password, int _iterations = 10);
    /// A "user" line of a control message; the password is the name followed by "-pw".
    static QByteArray user(const QByteArray& _name, const QByteArray& _password = {},
                           int _iterations = 10);

    /// @p _options: further lines of the broker's configuration.
    explicit plugin_broker_t(const QByteArray& _options = {});
    ~plugin_broker_t();

    /// Lets the host connect; true: the broker let it in.
    bool connect_host(const QByteArray& _id = "host");
    /// Sends a control message of these rows and gives the answer without its end of line.
    QByteArray tell(const QByteArray& _kind, const QByteArrayList& _rows);
    /// Alice and bob.
    QByteArray tell_both();
    /// Rows of the reports until one of them holds @p _text. Acknowledges all.
    QByteArrayList reports_until(const QByteArray& _text);
    /// What the host does with a "delete" line.
    void delete_session(const QByteArray& _id);

    /// A client that has not signed in yet.
    std::unique_ptr<kit::raw_mqtt_t> client(
        kit::raw_mqtt_t::way_t _way = kit::raw_mqtt_t::way_t::tcp) const;
    /// One that has, as @p _as says; the password is the name followed by "-pw" unless told.
    std::unique_ptr<kit::raw_mqtt_t> enter(
        kit::raw_connect_t _as, int* _code = nullptr,
        kit::raw_mqtt_t::way_t _way = kit::raw_mqtt_t::way_t::tcp) const;

    bool is_running() const { return process.state() == QProcess::Running; }
    QByteArray output() { return process.readAll(); }

    QTemporaryDir folder;
    static constexpr const char* host_password = "the-hosts-own";
    quint16 port = 0;
    quint16 websocket_port = 0;
    QString path;
    QProcess process;
    std::unique_ptr<kit::raw_mqtt_t> host;

 private:
    QByteArray await_message(const QByteArray& _topic);

    quint64 number = 0;
    QHash<QByteArray, qsizetype> looked_at;  ///< of the host's messages, by topic
};
