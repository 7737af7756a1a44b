#include "page_headers.h"

namespace torlan {

QByteArray page_headers(quint16 _ws_port) {
    const QByteArray port = QByteArray::number(_ws_port);
    return "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; "
           "img-src 'self'; connect-src 'self' ws://127.0.0.1:" +
           port + " ws://localhost:" + port +
           "; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
           "require-trusted-types-for 'script'\r\n"
           "X-Content-Type-Options: nosniff\r\n"
           "Referrer-Policy: no-referrer\r\n"
           "Cross-Origin-Opener-Policy: same-origin\r\n"
           "Cross-Origin-Resource-Policy: same-origin\r\n"
           "Cache-Control: no-cache\r\n"
           "Connection: close\r\n";
}

}  // namespace torlan
