#include "gate/refusal_t.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace torlan {

QByteArray error_packet(const refusal_t& _refusal) {
    const QJsonObject packet{{QStringLiteral("error"), _refusal.status},
                             {QStringLiteral("message"), _refusal.message}};
    return QJsonDocument(packet).toJson(QJsonDocument::Compact);
}

QByteArray refusal_answer(const refusal_t& _refusal) {
    const QByteArray body = error_packet(_refusal);
    QByteArray head = "HTTP/1.1 " + QByteArray::number(_refusal.status) + " Refused\r\n";
    head += _refusal.allowed.isEmpty() ? QByteArray() : "Allow: " + _refusal.allowed + "\r\n";
    head += "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) +
            "\r\nConnection: close\r\n\r\n";
    return head + body;
}

}  // namespace torlan
