#include "http/httpresponse_t.h"

httpresponse_t httpresponse_t::success(int _status, const QJsonValue& _data) {
    httpresponse_t response;
    response.error = no_error;
    response.status = _status;
    response.data = _data;
    return response;
}

httpresponse_t httpresponse_t::failure(int _error, int _status, const QString& _text) {
    httpresponse_t response;
    response.error = _error == no_error ? int(not_sent) : _error;
    response.status = _status;
    response.text = _text;
    return response;
}
