#pragma once

#include <QString>

namespace broker {

/// A new salted hash of @p _password as the broker's password file takes it:
/// "$7$<iterations>$<salt>$<hash>", PBKDF2 with SHA-512. The broker computes it at every
/// connection, in its only thread.
QString hash_password(const QString& _password, int _iterations = 1'000);

/// A password that cannot be guessed: 32 letters and digits.
QString random_password();

}  // namespace broker
