#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace ets {

/// What may open the inner zip of a protected project, in the order of trying: the key that ETS 6
/// derives from the password, then the password itself as earlier ones take it, in the encodings
/// that they may have used. Takes a fraction of a second.
QList<QByteArray> zip_passwords(const QString& _password);

/// The first of them.
QByteArray derived_zip_password(const QString& _password);

}  // namespace ets
