#include "http/http_t.h"

const QString http_t::LIBHTTP_VERSION = QStringLiteral("1.0.1");

http_t::http_t(const QString& _base_url, bool _use_proxy, QObject* _parent)
    : QObject(_parent), base_url(_base_url), use_proxy(_use_proxy) {}

http_t::~http_t() = default;

bool http_t::map_base(const QString& _base_url, quint16 _port) {
    return !_base_url.isEmpty() && _port != 0;
}

void http_t::set_timeout(int _timeout_ms) {
    timeout_ms = qMax(1, _timeout_ms);
}

httpresponse_t http_t::get(QString _path) const {
    Q_UNUSED(_path);
    return use_proxy ? httpresponse_t() : httpresponse_t();
}

httpresponse_t http_t::put(QString _path, const QJsonValue& _body) const {
    Q_UNUSED(_path);
    Q_UNUSED(_body);
    return httpresponse_t();
}
