#pragma once

#include <QString>

namespace database::installation {

/// Why a text may not be a password (empty, over 256 characters, control characters), without
/// the text itself; empty: it may.
QString password_error(const QString& _password);

/// The password in the form that the broker's password file takes:
/// "$7$<iterations>$<salt>$<hash>", PBKDF2 with SHA-512, a new random salt each time.
QString make_password_hash(const QString& _password);

/// Whether a text has that form, with any number of iterations up to 9,999,999.
bool is_password_hash(const QString& _hash);

/// Whether the password belongs to the hash; false for a malformed hash. Takes milliseconds.
bool verify_password(const QString& _password, const QString& _hash);

}  // namespace database::installation
