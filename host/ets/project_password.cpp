#include "ets/project_password.h"

#include <QCryptographicHash>
#include <QPasswordDigestor>
#include <QtEndian>

#include "ets/text_encoding.h"

namespace ets {

namespace {

constexpr int rounds = 65'536;
constexpr int key_bytes = 32;

QByteArray utf16_little_endian(const QString& _text) {
    QByteArray bytes(_text.size() * qsizetype(sizeof(char16_t)), Qt::Uninitialized);
    qToLittleEndian<char16_t>(_text.utf16(), _text.size(), bytes.data());
    return bytes;
}

}  // namespace

QByteArray derived_zip_password(const QString& _password) {
    return QPasswordDigestor::deriveKeyPbkdf2(
               QCryptographicHash::Sha256, utf16_little_endian(_password),
               QByteArrayLiteral("21.project.ets.knx.org"), rounds, key_bytes)
        .toBase64();
}

QList<QByteArray> zip_passwords(const QString& _password) {
    QList<QByteArray> candidates{derived_zip_password(_password), _password.toUtf8()};
    const QByteArray windows = to_windows_1252(_password);
    if (!windows.isEmpty() && windows != candidates.constLast()) {
        candidates.append(windows);
    }
    return candidates;
}

}  // namespace ets
