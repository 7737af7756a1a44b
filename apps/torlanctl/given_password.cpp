#include "given_password.h"

#include <sys/stat.h>

#include <QFile>

namespace torlan {

namespace {

/// A pipe is whose it is; a file must be its owner's alone.
base::result_t check_private(const QString& _path) {
    struct stat status {};
    const bool is_known = ::stat(QFile::encodeName(_path).constData(), &status) == 0;
    if (is_known && S_ISREG(status.st_mode) && (status.st_mode & 077U) != 0) {
        return base::result_t::failed(
            QStringLiteral("%1: others can read it: a file with a password needs mode 0600.")
                .arg(_path));
    }
    return {};
}

}  // namespace

base::result_of_t<QString> given_password(const call_t& _call, password_rule_t _rule) {
    const QString file = _call["password-file"];
    if (!_call.has("password-file")) {
        return read_password(_rule, QStringLiteral("Password: "));
    }
    const base::result_t is_private = check_private(file);
    return is_private.is_ok() ? read_password_file(file, _rule)
                              : base::result_of_t<QString>(is_private);
}

}  // namespace torlan
