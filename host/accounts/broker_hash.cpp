#include "accounts/broker_hash.h"

#include <QCryptographicHash>
#include <QPasswordDigestor>
#include <QRegularExpression>
#include <algorithm>

#include "base/random_hex.h"

namespace accounts {

namespace {

constexpr int hash_bytes = 64;

/// The broker refuses any other salt length.
constexpr int salt_bytes = 12;

QByteArray derive(const QString& _password, const QByteArray& _salt, int _iterations) {
    return QPasswordDigestor::deriveKeyPbkdf2(QCryptographicHash::Sha512, _password.toUtf8(), _salt,
                                              _iterations, hash_bytes);
}

QRegularExpressionMatch match_hash(const QString& _hash) {
    static const QRegularExpression form(QStringLiteral(
        R"(\A\$7\$([1-9][0-9]{0,6})\$([0-9A-Za-z+/]{16})\$([0-9A-Za-z+/]{86}==)\z)"));
    return form.match(_hash);
}

/// Compares every byte, so that the time tells nothing about the first difference.
bool same_bytes(const QByteArray& _a, const QByteArray& _b) {
    int difference = _a.size() == _b.size() ? 0 : 1;
    for (qsizetype i = 0; i < std::min(_a.size(), _b.size()); ++i) {
        difference |= _a[i] ^ _b[i];
    }
    return difference == 0;
}

}  // namespace

QString make_password_hash(const QString& _password, int _iterations) {
    const QByteArray salt = QByteArray::fromHex(base::random_hex(salt_bytes).toLatin1());
    const QByteArray hash = derive(_password, salt, _iterations);
    return QStringLiteral("$7$%1$%2$%3")
        .arg(QString::number(_iterations), QString::fromLatin1(salt.toBase64()),
             QString::fromLatin1(hash.toBase64()));
}

bool is_password_hash(const QString& _hash) {
    return match_hash(_hash).hasMatch();
}

bool verify_password(const QString& _password, const QString& _hash) {
    const QRegularExpressionMatch match = match_hash(_hash);
    if (!match.hasMatch()) {
        return false;
    }
    const QByteArray salt = QByteArray::fromBase64(match.captured(2).toLatin1());
    const QByteArray hash = QByteArray::fromBase64(match.captured(3).toLatin1());
    return same_bytes(derive(_password, salt, match.captured(1).toInt()), hash);
}

}  // namespace accounts
