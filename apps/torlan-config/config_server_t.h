#pragma once

#include <QHttpServer>
#include <QObject>

#include "settings_audit_t.h"
#include "settings_file_t.h"
#include "settings_service_t.h"
#include "trigger_runner_t.h"

namespace torlan {

class gated_listener_t;

/// The configuration server: wires listener, HTTP server, settings and triggers. Everything runs
/// on the thread that made it, one request after the other: no write can lose another one.
class config_server_t : public QObject {
    Q_OBJECT

 public:
    /// @param _trigger program to run after a PUT with "runtriggers=true"; empty: none
    explicit config_server_t(const QString& _trigger, QObject* _parent = nullptr);
    ~config_server_t() override;

    /// Opens the settings and listens on 127.0.0.1; @p _port 0 takes a free one.
    base::result_t start(const QString& _file, quint16 _port);

    quint16 port() const;
    /// True when start() found no settings file and made one.
    bool is_file_new() const { return file.is_new(); }
    /// See gated_listener_t::set_limit().
    void set_limit(int _limit_ms);

 private:
    QHttpServerResponse answer(const QHttpServerRequest& _request);
    settings_service_t::answer_t put(const settings_path_t& _path,
                                     const QHttpServerRequest& _request);

    settings_file_t file;
    settings_audit_t audit;
    const settings_service_t service;
    trigger_runner_t triggers;
    QHttpServer http;
    gated_listener_t* const listener;  ///< a child, given to http once it listens
};

}  // namespace torlan
