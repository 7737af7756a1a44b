#include "http/http_exchange_t.h"

#include <curl/curl.h>

#include <memory>

namespace {

struct received_t {
    QByteArray body;
    qint64 head_bytes = 0;
    qint64 max_bytes = 0;
    bool too_large = false;
    bool head_ended = false;
};

// Taking less than offered makes the library end the exchange.
size_t take_head(char* _line, size_t _size, size_t _count, void* _received) {
    auto* received = static_cast<received_t*>(_received);
    received->head_bytes += qint64(_size * _count);
    const QByteArrayView line(_line, qsizetype(_size * _count));
    if (line.startsWith("HTTP/")) {
        received->head_ended = false;
    } else if (line == "\r\n" || line == "\n") {
        received->head_ended = true;
    }
    received->too_large = received->too_large || received->head_bytes > received->max_bytes;
    return received->too_large ? 0 : _size * _count;
}

size_t take_body(char* _data, size_t _size, size_t _count, void* _received) {
    auto* received = static_cast<received_t*>(_received);
    const std::size_t bytes = _size * _count;
    if (qint64(bytes) > received->max_bytes - received->body.size()) {
        received->too_large = true;
        return 0;
    }
    received->body.append(_data, qsizetype(bytes));
    return bytes;
}

int error_of(CURLcode _code) {
    switch (_code) {
        case CURLE_OPERATION_TIMEDOUT:
            return httpresponse_t::timed_out;
        case CURLE_COULDNT_CONNECT:
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return httpresponse_t::not_connected;
        case CURLE_URL_MALFORMAT:
        case CURLE_FAILED_INIT:
        case CURLE_OUT_OF_MEMORY:
            return httpresponse_t::not_sent;
        default:
            return httpresponse_t::broken_answer;
    }
}

bool is_library_ready() {
    static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
    return code == CURLE_OK;
}

using handle_t = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using headers_t = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

void set_transport(CURL* _curl, const http_exchange_t& _exchange) {
    curl_easy_setopt(_curl, CURLOPT_URL, _exchange.address.constData());
    curl_easy_setopt(_curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(_curl, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(_curl, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(_curl, CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(_curl, CURLOPT_HTTP09_ALLOWED, 0L);
    curl_easy_setopt(_curl, CURLOPT_TIMEOUT_MS, long(_exchange.timeout_ms));
    curl_easy_setopt(_curl, CURLOPT_CONNECTTIMEOUT_MS, long(_exchange.timeout_ms));
    // Without it the time-out of a name look-up would be a signal, which threads cannot bear.
    curl_easy_setopt(_curl, CURLOPT_NOSIGNAL, 1L);
    if (!_exchange.use_proxy) {
        curl_easy_setopt(_curl, CURLOPT_PROXY, "");
    }
}

void set_request(CURL* _curl, const http_exchange_t& _exchange, curl_slist* _headers) {
    curl_easy_setopt(_curl, CURLOPT_HTTPHEADER, _headers);
    if (_exchange.method == "PUT") {
        curl_easy_setopt(_curl, CURLOPT_CUSTOMREQUEST, "PUT");
        curl_easy_setopt(_curl, CURLOPT_POSTFIELDS, _exchange.body.constData());
        curl_easy_setopt(_curl, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(_exchange.body.size()));
    }
}

void set_sinks(CURL* _curl, received_t* _received) {
    curl_easy_setopt(_curl, CURLOPT_HEADERFUNCTION, take_head);
    curl_easy_setopt(_curl, CURLOPT_HEADERDATA, _received);
    curl_easy_setopt(_curl, CURLOPT_WRITEFUNCTION, take_body);
    curl_easy_setopt(_curl, CURLOPT_WRITEDATA, _received);
}

curl_slist* new_headers() {
    curl_slist* headers = nullptr;
    // An empty "Expect:" keeps the library from waiting for permission to send a body.
    for (const char* line : {"Content-Type: application/json", "Accept: application/json",
                             "Connection: close", "Expect:"}) {
        headers = curl_slist_append(headers, line);
    }
    return headers;
}

}  // namespace

http_exchange_t::answer_t http_exchange_t::run() const {
    const handle_t curl(is_library_ready() ? curl_easy_init() : nullptr, &curl_easy_cleanup);
    if (!curl) {
        return {httpresponse_t::not_sent, 0, {}, QStringLiteral("the HTTP library did not start")};
    }
    received_t received;
    received.max_bytes = max_bytes;
    const headers_t headers(new_headers(), &curl_slist_free_all);
    set_transport(curl.get(), *this);
    set_request(curl.get(), *this, headers.get());
    set_sinks(curl.get(), &received);
    const CURLcode code = curl_easy_perform(curl.get());
    long status = 0;
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &status);
    if (received.too_large) {
        return {
            httpresponse_t::too_large, int(status), {}, QStringLiteral("the answer is too large")};
    }
    if (code != CURLE_OK) {
        return {error_of(code), int(status), {}, QString::fromUtf8(curl_easy_strerror(code))};
    }
    // The library takes a head that breaks off for a whole one without a body.
    if (!received.head_ended) {
        return {httpresponse_t::broken_answer, int(status), {}, QStringLiteral("half an answer")};
    }
    return {httpresponse_t::no_error, int(status), received.body, {}};
}
