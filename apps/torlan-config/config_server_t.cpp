#include "config_server_t.h"

#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QUrl>
#include <QUrlQuery>

#include "gated_listener_t.h"
#include "settings_path_t.h"

namespace torlan {

namespace {

void add_headers(QHttpServerResponse* _response) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QHttpHeaders headers = _response->headers();
    headers.append("Connection", "close");
    headers.append("Cache-Control", "no-store");
    headers.append("X-Content-Type-Options", "nosniff");
    _response->setHeaders(std::move(headers));
#else
    _response->addHeader("Connection", "close");
    _response->addHeader("Cache-Control", "no-store");
    _response->addHeader("X-Content-Type-Options", "nosniff");
#endif
}

QHttpServerResponse response_of(const settings_service_t::answer_t& _answer) {
    QHttpServerResponse response(QByteArray("application/json"), _answer.body,
                                 QHttpServerResponse::StatusCode(_answer.status));
    add_headers(&response);
    return response;
}

}  // namespace

config_server_t::config_server_t(const QString& _trigger, QObject* _parent)
    : QObject(_parent),
      service(&file),
      triggers(_trigger, this),
      listener(new gated_listener_t(this)) {
    // An address as last argument matches the rest of the path, slashes included.
    http.route(QStringLiteral("/<arg>"),
               [this](const QUrl&, const QHttpServerRequest& request) { return answer(request); });
    connect(listener, &gated_listener_t::stranger_refused, this,
            [this](std::optional<uid_t> _user) { audit.note_stranger(_user); });
}

config_server_t::~config_server_t() = default;

base::result_t config_server_t::start(const QString& _file, quint16 _port) {
    // First the port: a start that fails has made no file. Nothing is served before the event loop.
    if (!listener->listen(QHostAddress::LocalHost, _port)) {
        return base::result_t::failed(QStringLiteral("cannot listen on 127.0.0.1, port %1: %2")
                                          .arg(QString::number(_port), listener->errorString()));
    }
    base::result_t opened = file.open(_file);
    if (opened.is_ok()) {
        opened = audit.open(file.path());
    }
    if (opened.is_ok()) {
        static_cast<void>(http.bind(listener));
    }
    return opened;
}

quint16 config_server_t::port() const {
    return listener->serverPort();
}

void config_server_t::set_limit(int _limit_ms) {
    listener->set_limit(_limit_ms);
}

QHttpServerResponse config_server_t::answer(const QHttpServerRequest& _request) {
    const settings_path_t path =
        settings_path_t::parse(_request.url().path(QUrl::FullyEncoded).toLatin1());
    return response_of(_request.method() == QHttpServerRequest::Method::Put ? put(path, _request)
                                                                            : service.get(path));
}

settings_service_t::answer_t config_server_t::put(const settings_path_t& _path,
                                                  const QHttpServerRequest& _request) {
    const settings_service_t::answer_t result = service.put(_path, _request.body());
    audit.note_put(_request.url().path(), result.status);
    if (result.status == 200 &&
        _request.query().queryItemValue(QStringLiteral("runtriggers")) == QLatin1String("true")) {
        triggers.run();
    }
    return result;
}

}  // namespace torlan
