#include "broker/password_hash.h"

#include <QCryptographicHash>
#include <QPasswordDigestor>
#include <QRandomGenerator>

namespace broker {

namespace {
template <int Words>
QByteArray random_bytes() {
    quint32 words[Words];
    QRandomGenerator::system()->fillRange(words);
    return {reinterpret_cast<const char*>(words), sizeof words};
}
}  // namespace

QString hash_password(const QString& _password, int _iterations) {
    const QByteArray salt = random_bytes<3>();
    const QByteArray hash = QPasswordDigestor::deriveKeyPbkdf2(
        QCryptographicHash::Sha512, _password.toUtf8(), salt, _iterations, 64);
    return QStringLiteral("$7$%1$%2$%3")
        .arg(QString::number(_iterations), QString::fromLatin1(salt.toBase64()),
             QString::fromLatin1(hash.toBase64()));
}

QString random_password() {
    return QString::fromLatin1(random_bytes<4>().toHex());
}

}  // namespace broker
