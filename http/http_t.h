#pragma once

#include <QJsonValue>
#include <QObject>
#include <QString>
#include <atomic>

#include "http/httpresponse_t.h"

/// A small blocking HTTP client for JSON services.
///
/// Each call makes one request on a connection of its own and returns when it is over, within the
/// time-out; no event loop runs meanwhile, so nothing re-enters the caller. Redirects are not
/// followed. Any thread may call; calls do not share state.
class http_t : public QObject {
    Q_OBJECT

 public:
    /// Version of this library's interface.
    static const QString LIBHTTP_VERSION;

    static constexpr int default_timeout_ms = 5000;
    /// An answer larger than this (head or body) is refused while it arrives.
    static constexpr qint64 max_answer_bytes = 16 * 1024 * 1024;

    /// @param _base_url prefix of every request's address, usually ending in "/"; http or https
    /// @param _use_proxy true: the proxy that the environment names is used. Never for addresses
    ///        of this machine; false: never at all
    http_t(const QString& _base_url, bool _use_proxy, QObject* _parent = nullptr);
    ~http_t() override;

    /// Sends every request for the scheme, host and port of @p _base_url to @p _port of the same
    /// host instead; a later call replaces the port, 0 takes the mapping out. For the host program,
    /// once at start: clients made earlier follow too. False, and nothing changes, unless
    /// @p _base_url is an http address of this machine (127.0.0.1, localhost, [::1]).
    static bool map_base(const QString& _base_url, quint16 _port);

    /// GET of base URL + @p _path. An answer without content is a failure unless its status is 204.
    httpresponse_t get(QString _path) const;

    /// PUT of @p _body as JSON to base URL + @p _path. An answer without content is a success.
    httpresponse_t put(QString _path, const QJsonValue& _body) const;

    /// Longest time of one call in ms, name look-up and connection included; at least 1.
    void set_timeout(int _timeout_ms);
    int timeout() const { return timeout_ms; }

 private:
    httpresponse_t request(const QByteArray& _method, const QString& _path,
                           const QByteArray& _body) const;

    const QString base_url;
    const bool use_proxy;
    std::atomic<int> timeout_ms = default_timeout_ms;
};
