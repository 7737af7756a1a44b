#include "installation/password_error.h"

#include "database/name_rules.h"

namespace database::installation {

namespace {
constexpr qsizetype max_password = 256;
}

QString password_error(const QString& _password) {
    if (_password.isEmpty()) {
        return QStringLiteral("must not be empty");
    }
    if (_password.size() > max_password) {
        return QStringLiteral("must be at most 256 characters long");
    }
    return plain_text_error(_password);
}

}  // namespace database::installation
