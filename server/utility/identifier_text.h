#pragma once

#include <QString>

namespace utility {

/// The three forms in which the server writes a UUID. Each takes the UUID's text with braces.

/// Without braces and hyphens.
QString plain_uuid(QString _uuid);
/// Digits only: "a" to "f" become "10" to "15", in this order; then as plain_uuid().
QString number_uuid(QString _uuid);
/// Without everything that is not a letter, a digit or white space.
QString installation_uuid(QString _uuid);

}  // namespace utility
