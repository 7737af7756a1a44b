#pragma once

#include <QString>

namespace kit {

/// Every user of a test's installation or broker has this password.
inline QString password_of(const QString& _username) {
    return _username + QStringLiteral("-password");
}

}  // namespace kit
