#pragma once

#include <QStringList>
#include <functional>

#include "database/database_t.h"
#include "live/change_feed_t.h"

/// Every signal of a database and its feed in order, as "element e-lamp" or "users_changed".
class notifier_log_t : public QObject {
 public:
    explicit notifier_log_t(database::database_t* _database,
                            database::live::change_feed_t* _feed = nullptr) {
        using database::live::change_feed_t;
        follow_persistent(_database->getPersistent()->getNotifier());
        follow_realtime(_database->getRealtime()->getNotifier());
        if (_feed != nullptr) {
            connect(_feed, &change_feed_t::users_changed, this, [this] { add("users_changed"); });
            connect(_feed, &change_feed_t::access_changed, this, [this] { add("access_changed"); });
            connect(_feed, &change_feed_t::reloaded, this, [this] { add("reloaded"); });
            connect(_feed, &change_feed_t::failed, this, [this] { add("failed"); });
        }
    }

    QStringList lines;
    std::function<void(const QString& _line)> at_signal;  ///< called while the signal is emitted

 private:
    void follow_persistent(const database::persistent::ps_notifier_t* _notifier) {
        using database::persistent::ps_notifier_t;
        connect(_notifier, &ps_notifier_t::onPersistentChangeDatabase, this,
                [this] { add("database"); });
        connect(_notifier, &ps_notifier_t::onPersistentChangeElements, this,
                [this] { add("elements"); });
        connect(_notifier, &ps_notifier_t::onPersistentChangeUsers, this, [this] { add("users"); });
        connect_keyed(_notifier, &ps_notifier_t::onPersistentChangeElement, "element");
        connect_keyed(_notifier, &ps_notifier_t::onPersistentChangeUser, "user");
        connect_keyed(_notifier, &ps_notifier_t::onPersistentStatusThermo, "thermostat");
    }
    void follow_realtime(const database::realtime::rt_notifier_t* _notifier) {
        using database::realtime::rt_notifier_t;
        connect(_notifier, &rt_notifier_t::onRealtimeChangeDatabase, this,
                [this] { add("realtime"); });
        connect(_notifier, &rt_notifier_t::onRealtimeChangeItems, this, [this] { add("items"); });
        connect_keyed(_notifier, &rt_notifier_t::onRealtimeChangeItem, "item");
        connect_keyed(_notifier, &rt_notifier_t::onRealtimeChangeScenaryObjects, "scenario");
    }
    template <class notifier_t, class signal_t>
    void connect_keyed(const notifier_t* _notifier, signal_t _signal, const QString& _kind) {
        connect(_notifier, _signal, this, [this, _kind](const QJsonObject&, const QString& _key) {
            add(_kind + QLatin1Char(' ') + _key);
        });
    }
    void add(const QString& _line) {
        lines.append(_line);
        if (at_signal) {
            at_signal(_line);
        }
    }
};
