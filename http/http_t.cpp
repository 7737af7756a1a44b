#include "http/http_t.h"

#include <QHash>
#include <QUrl>
#include <optional>

#include "base/json_text.h"
#include "base/locks.h"
#include "http/http_exchange_t.h"
#include "http/loopback.h"

const QString http_t::LIBHTTP_VERSION = QStringLiteral("1.0.1");

namespace {

struct base_map_t {
    base::read_write_lock_t lock;
    QHash<QString, quint16> ports TORLAN_GUARDED_BY(lock);  ///< by origin
};

// Built at first use: clients may be made while libraries still load.
base_map_t& base_map() {
    static base_map_t map;
    return map;
}

QString origin_of(const QUrl& _url) {
    return QStringLiteral("%1://%2:%3").arg(_url.scheme(), _url.host()).arg(_url.port(80));
}

QUrl mapped(QUrl _url) {
    base_map_t& map = base_map();
    const base::read_locker_t locker(&map.lock);
    const quint16 port = map.ports.value(origin_of(_url));
    if (port != 0) {
        _url.setPort(port);
    }
    return _url;
}

httpresponse_t failure(const QUrl& _url, int _error, int _status, const QString& _reason) {
    const QString where =
        _url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery | QUrl::RemoveFragment);
    return httpresponse_t::failure(_error, _status, QStringLiteral("%1: %2").arg(where, _reason));
}

httpresponse_t response_of(const QUrl& _url, const http_exchange_t& _exchange) {
    const http_exchange_t::answer_t answer = _exchange.run();
    if (answer.error != httpresponse_t::no_error) {
        return failure(_url, answer.error, answer.status, answer.text);
    }
    if (answer.status < 200 || answer.status > 299) {
        return failure(_url, answer.status, answer.status,
                       QStringLiteral("the server answered %1").arg(answer.status));
    }
    if (answer.body.isEmpty() && (_exchange.method == "PUT" || answer.status == 204)) {
        return httpresponse_t::success(answer.status, QJsonValue::Undefined);
    }
    const std::optional<QJsonValue> data = base::json_from_text(answer.body);
    if (!data) {
        return failure(_url, httpresponse_t::not_json, answer.status,
                       QStringLiteral("the answer is not JSON"));
    }
    return httpresponse_t::success(answer.status, *data);
}

}  // namespace

http_t::http_t(const QString& _base_url, bool _use_proxy, QObject* _parent)
    : QObject(_parent), base_url(_base_url), use_proxy(_use_proxy) {}

http_t::~http_t() = default;

bool http_t::map_base(const QString& _base_url, quint16 _port) {
    const QUrl url(_base_url, QUrl::StrictMode);
    if (url.scheme() != QLatin1String("http") || !is_loopback_host(url.host())) {
        return false;
    }
    base_map_t& map = base_map();
    const base::write_locker_t locker(&map.lock);
    if (_port == 0) {
        map.ports.remove(origin_of(url));
    } else {
        map.ports.insert(origin_of(url), _port);
    }
    return true;
}

void http_t::set_timeout(int _timeout_ms) {
    timeout_ms = qMax(1, _timeout_ms);
}

httpresponse_t http_t::get(QString _path) const {
    return request("GET", _path, {});
}

httpresponse_t http_t::put(QString _path, const QJsonValue& _body) const {
    return request("PUT", _path, base::json_to_text(_body));
}

httpresponse_t http_t::request(const QByteArray& _method, const QString& _path,
                               const QByteArray& _body) const {
    const QUrl url = mapped(QUrl(base_url + _path, QUrl::TolerantMode));
    if (!url.isValid() || url.host().isEmpty()) {
        return httpresponse_t::failure(httpresponse_t::not_sent, 0,
                                       QStringLiteral("no usable address for \"%1\"").arg(_path));
    }
    const bool proxy = use_proxy && !is_loopback_host(url.host());
    return response_of(url, {_method, url.toEncoded(QUrl::RemoveFragment), _body, timeout(), proxy,
                             max_answer_bytes});
}
