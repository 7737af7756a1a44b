#include "installation/password_hash.h"

#include <QPasswordDigestor>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <algorithm>
#include <array>

#include "installation/name_rules.h"

namespace database::installation {

namespace {

constexpr qsizetype max_password = 256;
constexpr qsizetype hash_bytes = 64;

/// docs/decisions/021-password-iterations.md weighs this number.
constexpr int iterations = 5000;

/// The broker refuses any other salt length.
constexpr qsizetype salt_words = 3;

QByteArray new_salt() {
    std::array<quint32, salt_words> words{};
    QRandomGenerator::system()->fillRange(words.data(), salt_words);
    return QByteArray(reinterpret_cast<const char*>(words.data()), sizeof(words));
}

QByteArray derive(const QString& _password, const QByteArray& _salt, int _iterations) {
    return QPasswordDigestor::deriveKeyPbkdf2(QCryptographicHash::Sha512, _password.toUtf8(), _salt,
                                              _iterations, hash_bytes);
}

QRegularExpressionMatch match_hash(const QString& _hash) {
    static const QRegularExpression form(
        R"(\A\$7\$([1-9][0-9]{0,6})\$([0-9A-Za-z+/]{16})\$([0-9A-Za-z+/]{86}==)\z)");
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

QString password_error(const QString& _password) {
    if (_password.isEmpty()) {
        return QStringLiteral("must not be empty");
    }
    if (_password.size() > max_password) {
        return QStringLiteral("must be at most 256 characters long");
    }
    return plain_text_error(_password);
}

QString make_password_hash(const QString& _password) {
    const QByteArray salt = new_salt();
    const QByteArray hash = derive(_password, salt, iterations);
    return QStringLiteral("$7$%1$%2$%3")
        .arg(QString::number(iterations), QString::fromLatin1(salt.toBase64()),
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

}  // namespace database::installation
