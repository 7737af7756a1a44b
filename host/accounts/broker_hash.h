#pragma once

#include <QString>

/// Passwords in the one form that the broker reads: "$7$<iterations>$<salt>$<hash>", PBKDF2 with
/// SHA-512.
namespace accounts {

/// For passwords that people choose; docs/decisions/021-password-iterations.md weighs this number.
constexpr int iterations_chosen = 5'000;

/// For passwords of base::random_hex(), which nobody can guess: the broker compares them at once,
/// in its only thread, up to 64 of them.
constexpr int iterations_drawn = 10;

/// A new hash of @p _password, with a new random salt each time.
QString make_password_hash(const QString& _password, int _iterations = iterations_chosen);

/// Whether a text has that form, with any number of iterations up to 9,999,999.
bool is_password_hash(const QString& _hash);

/// Whether the password belongs to the hash; false for a malformed hash. Takes milliseconds.
bool verify_password(const QString& _password, const QString& _hash);

}  // namespace accounts
