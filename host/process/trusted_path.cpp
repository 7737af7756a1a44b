#include "process/trusted_path.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cstring>
#include <vector>

namespace process {

using base::result_t;

namespace {

bool is_trusted(uid_t _user) {
    static const uid_t program_owner = []() {
        struct stat program = {};
        return ::stat("/proc/self/exe", &program) == 0 ? program.st_uid : ::geteuid();
    }();
    return _user == 0 || _user == ::geteuid() || _user == program_owner;
}

/// The group that many systems make for one user alone.
bool is_own_group(uid_t _user, gid_t _group) {
    std::vector<char> texts(64 * 1024);
    passwd user = {};
    passwd* found = nullptr;
    ::getpwuid_r(_user, &user, texts.data(), texts.size(), &found);
    if (found == nullptr || user.pw_gid != _group) {
        return false;
    }
    std::vector<char> members(64 * 1024);
    group entry = {};
    group* known = nullptr;
    ::getgrgid_r(_group, &entry, members.data(), members.size(), &known);
    return known != nullptr && entry.gr_mem[0] == nullptr &&
           std::strcmp(entry.gr_name, user.pw_name) == 0;
}

bool is_shared_safely(const struct stat& _status) {
    return S_ISDIR(_status.st_mode) && (_status.st_mode & S_ISVTX) != 0 &&
           is_trusted(_status.st_uid);
}

}  // namespace

bool is_only_ours(const struct stat& _status) {
    return is_trusted(_status.st_uid) && (_status.st_mode & S_IWOTH) == 0 &&
           ((_status.st_mode & S_IWGRP) == 0 || _status.st_gid == 0 ||
            is_own_group(_status.st_uid, _status.st_gid));
}

result_t check_only_ours(const QString& _path) {
    const QString real = QFileInfo(_path).canonicalFilePath();
    if (real.isEmpty()) {
        return result_t::failed(QStringLiteral("%1 cannot be found.").arg(_path));
    }
    const QString program = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    QString place = real;
    while (place == real || !program.startsWith(place + QLatin1Char('/'))) {
        struct stat status = {};
        if (::lstat(QFile::encodeName(place).constData(), &status) != 0) {
            return result_t::failed(QStringLiteral("%1 cannot be looked at.").arg(place));
        }
        if (!is_only_ours(status) && (place == real || !is_shared_safely(status))) {
            return result_t::failed(
                QStringLiteral("%1 can be changed by other users of this machine.").arg(place));
        }
        if (place == QLatin1String("/")) {
            return {};
        }
        place = QFileInfo(place).path();
    }
    return {};
}

}  // namespace process
