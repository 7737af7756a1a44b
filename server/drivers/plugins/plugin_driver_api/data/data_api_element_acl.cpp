// The permission side of data_api_element_object_t.
#include <QSet>

#include "database/permission.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"

namespace interfaces {

using namespace database::permission;

void data_api_element_object_t::populatePermission() {
    permission = false;
    QSet<QString> seen;
    const QStringList ids = view.user_ids(true);
    for (const QString& id : ids) {
        const QString username = view.username(id);
        seen.insert(username);
        const int bits = view.permission(id_element, id);
        if (!permissions.contains(username)) {
            permissions.insert(username, static_cast<quint64>(qMax(bits, 0)));
        }
        permission = permission || bits > 0;
        add_acl(username);
    }
    const QStringList listed = acl.keys();
    for (const QString& username : listed) {
        if (!seen.contains(username)) {
            remove_username_acl(username);
        }
    }
    init_event(permission);
}

void data_api_element_object_t::update_permission() {
    populatePermission();
}

bool data_api_element_object_t::check_authorization(const QString& username, unsigned int mask) {
    // A user that is not listed has no bits.
    return allows(permissions.value(username), mask);
}

bool data_api_element_object_t::autorized_read(const QString& username, int& code) {
    code = verdict(permissions.value(username), read_bit);
    return code == code_accepted;
}

bool data_api_element_object_t::autorized_write(const QString& username, int& code) {
    // The read bit, as for reading; the API's writes test the write bit themselves. Keep both.
    return autorized_read(username, code);
}

void data_api_element_object_t::add_acl(QString username) {
    // The first test holds for either bit already; the order is kept as callers know it.
    QString word = deny;
    if (check_authorization(username, all_bits)) {
        word = readwrite;
    } else if (check_authorization(username, read_bit)) {
        word = read;
    } else if (check_authorization(username, write_bit)) {
        word = write;
    }
    if (word == deny) {
        // Announced even while initialising, so that a stale retained packet goes at once.
        const bool send = !acl.contains(username) || acl.value(username) != deny;
        acl.insert(username, deny);
        if (send) {
            Q_EMIT remove_acl_element(username, id_element);
        }
        return;
    }
    const bool send = send_signals_acl(username, word);
    acl.insert(username, word);
    if (send) {
        Q_EMIT add_acl_element(username, id_element, word);
    }
}

bool data_api_element_object_t::send_signals_acl(const QString& username,
                                                 const QString& _permission) {
    if (initialising) {
        return false;
    }
    return !acl.contains(username) || acl.value(username) != _permission;
}

void data_api_element_object_t::remove_username_acl(const QString& username) {
    if (!acl.contains(username)) {
        return;
    }
    const QString word = acl.value(username);
    acl.remove(username);
    if (word != deny) {
        Q_EMIT remove_acl_element(username, id_element);
    }
}

void data_api_element_object_t::remove_acl() {
    const base::small_table_t<QString> before = acl;
    for (const auto& row : before) {
        if (row.value.contains(id_element)) {
            acl.insert(row.key, QString(row.value).remove(id_element));
            Q_EMIT remove_acl_element(row.key, id_element);
        }
    }
}

void data_api_element_object_t::share_rights(const data_api_element_object_t& _other) {
    permissions.share(_other.permissions);
    acl.share(_other.acl);
}

void data_api_element_object_t::init_event(bool enable) {
    if (!enable) {
        for (QMetaObject::Connection& connection : listening) {
            disconnect(connection);
            connection = {};
        }
        return;
    }
    // Each for itself: somebody else may have cut one of them.
    const auto listen = [this](QMetaObject::Connection& connection, const QObject* sender,
                               const char* signal, const char* slot) {
        if (!connection && sender != nullptr) {
            connection = connect(sender, signal, this, slot, Qt::QueuedConnection);
        }
    };
    listen(listening[0], view.realtime_notifier(),
           SIGNAL(onRealtimeChangeItem(const QJsonObject&, const QString&)),
           SLOT(onRealtimeChangeItem(const QJsonObject&, const QString&)));
    listen(listening[1], view.realtime_notifier(),
           SIGNAL(onRealtimeChangeScenaryObjects(const QJsonObject&, const QString&)),
           SLOT(onRealtimeChangeScenaryObjects(const QJsonObject&, const QString&)));
    listen(listening[2], view.persistent_notifier(),
           SIGNAL(onPersistentStatusThermo(const QJsonObject&, const QString&)),
           SLOT(onPersistentStatusThermo(const QJsonObject&, const QString&)));
}

}  // namespace interfaces
