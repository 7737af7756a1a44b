#include "installation/keep_users.h"

#include <QHash>

namespace database::installation {

namespace {

class keeper_t {
 public:
    keeper_t(const installation_t& _former, installation_t* _next) : former(_former), next(_next) {
        for (auto it = next->users.cbegin(); it != next->users.cend(); ++it) {
            id_of.insert(it->username, it.key());
        }
    }

    int keep_all() {
        for (auto it = former.users.cbegin(); it != former.users.cend(); ++it) {
            keep(it.key(), it.value());
        }
        next->permissions.removeIf([](const auto& _user) { return _user.value().isEmpty(); });
        return gone;
    }

 private:
    void keep(const QString& _id, const user_t& _user) {
        QMap<QString, int> grants = new_grants(_user.username);
        make_room(_id);
        const QMap<QString, int> had = former.permissions.value(_id);
        for (auto grant = had.cbegin(); grant != had.cend(); ++grant) {
            if (next->elements.contains(grant.key())) {
                grants.insert(grant.key(), grant.value());
            } else {
                ++gone;
            }
        }
        next->users.insert(_id, _user);
        next->permissions.insert(_id, grants);
    }

    /// Takes the user of that name out; what is left are the grants for elements that are new.
    QMap<QString, int> new_grants(const QString& _username) {
        const QString id = id_of.value(_username);
        next->users.remove(id);
        QMap<QString, int> grants = next->permissions.take(id);
        grants.removeIf(
            [this](const auto& _grant) { return former.elements.contains(_grant.key()); });
        return grants;
    }

    /// Another user of the next installation may have the identifier, and gets another one.
    void make_room(const QString& _id) {
        if (!next->users.contains(_id)) {
            return;
        }
        constexpr qsizetype longest = 56;
        QString id = _id;
        for (int number = 2; next->users.contains(id) || former.users.contains(id); ++number) {
            id = _id.left(longest) + u'-' + QString::number(number);
        }
        const user_t other = next->users.take(_id);
        id_of.insert(other.username, id);
        next->users.insert(id, other);
        next->permissions.insert(id, next->permissions.take(_id));
    }

    const installation_t& former;
    installation_t* const next;
    QHash<QString, QString> id_of;  ///< name -> identifier, in the next installation
    int gone = 0;
};

}  // namespace

QStringList keep_users(const installation_t& _former, installation_t* _next) {
    const int gone = keeper_t(_former, _next).keep_all();
    return gone == 0
               ? QStringList()
               : QStringList{QStringLiteral("Grants for elements that are gone are left out: %1.")
                                 .arg(gone)};
}

}  // namespace database::installation
