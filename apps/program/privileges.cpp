#include "program/privileges.h"

#include <cap-ng.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

namespace torlan {

using base::result_t;

namespace {

struct account_t {
    uid_t user;
    gid_t group;
};

std::optional<account_t> find_account(const QString& _name) {
    std::vector<char> texts(16 * 1024);
    passwd entry = {};
    passwd* found = nullptr;
    ::getpwnam_r(_name.toUtf8().constData(), &entry, texts.data(), texts.size(), &found);
    return found == nullptr ? std::nullopt : std::optional<account_t>({entry.pw_uid, entry.pw_gid});
}

}  // namespace

bool is_root() {
    return ::geteuid() == 0;
}

result_t become_account(const QString& _name) {
    const std::optional<account_t> account = find_account(_name);
    if (!account) {
        return result_t::failed(QStringLiteral("There is no system account \"%1\".").arg(_name));
    }
    if (::getuid() == account->user && ::geteuid() == account->user) {
        return {};
    }
    if (!is_root()) {
        return result_t::failed(
            QStringLiteral("Only root can run as the system account \"%1\".").arg(_name));
    }
    ::capng_clear(CAPNG_SELECT_BOTH);
    const int status =
        ::capng_change_id(static_cast<int>(account->user), static_cast<int>(account->group),
                          static_cast<capng_flags_t>(CAPNG_INIT_SUPP_GRP | CAPNG_CLEAR_BOUNDING));
    // Whatever the library says: nobody who was asked to go may stay.
    if (status != 0 || ::getuid() != account->user || ::geteuid() != account->user) {
        return result_t::failed(QStringLiteral("Becoming the system account \"%1\" failed (%2).")
                                    .arg(_name, QString::number(status)));
    }
    return {};
}

result_t keep_capabilities(const QList<int>& _kept) {
    if (!is_root()) {
        return {};
    }
    ::capng_get_caps_process();
    QList<unsigned> had;
    for (const int capability : _kept) {
        if (::capng_have_capability(CAPNG_PERMITTED, static_cast<unsigned>(capability)) != 0) {
            had += static_cast<unsigned>(capability);
        }
    }
    // Without it, as in some containers, what the process starts cannot be bounded.
    const bool may_bound = ::capng_have_capability(CAPNG_EFFECTIVE, CAP_SETPCAP) != 0;
    ::capng_clear(CAPNG_SELECT_BOTH);
    for (const unsigned capability : had) {
        ::capng_update(
            CAPNG_ADD,
            static_cast<capng_type_t>(CAPNG_EFFECTIVE | CAPNG_PERMITTED | CAPNG_BOUNDING_SET),
            capability);
    }
    if (::capng_apply(may_bound ? CAPNG_SELECT_BOTH : CAPNG_SELECT_CAPS) != 0) {
        return result_t::failed(QStringLiteral("Root's capabilities cannot be given up: %1.")
                                    .arg(QString::fromLocal8Bit(std::strerror(errno))));
    }
    return {};
}

result_t give_up_privileges(const QString& _account, const QList<int>& _kept, QString* _told) {
    if (!_account.isEmpty()) {
        return become_account(_account);
    }
    if (is_root()) {
        *_told = QStringLiteral("runs as root, with few of its capabilities; --user gives it up");
    }
    return keep_capabilities(_kept);
}

}  // namespace torlan
