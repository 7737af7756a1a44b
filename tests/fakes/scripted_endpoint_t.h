#pragma once

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>

#include "comunication/api_topic_t.h"
#include "comunication/protoserver_t.h"

namespace fakes {

/// An endpoint without a network: it writes down what drivers ask of it and says what a test
/// tells it to. Like a broker it keeps retained messages and sends the retained status messages
/// again at every subscription.
///
/// May live in any thread with an event loop; what it wrote down is read from any thread.
class scripted_endpoint_t : public comunication::protoserver_t {
 public:
    using qos_t = comunication::utility::qos_t;
    using subscribe_t = comunication::utility::subscribe_t;

    struct published_t {
        QString topic;
        QJsonValue payload;
        qos_t qos;
        bool retain;
        QThread* thread;  ///< on which the call was made
        bool reserved;    ///< the call's last argument
    };
    struct deleted_t {
        QString topic;
        qos_t qos;
        bool retain;
        QThread* thread;  ///< on which the call was made
    };

    explicit scripted_endpoint_t(QObject* _parent = nullptr) : protoserver_t(_parent) {}

    void publish(const QString& _topic, const QJsonValue& _payload, qos_t _qos, bool _retain,
                 bool _reserved) override {
        const QMutexLocker locker(&lock);
        publications.append({_topic, _payload, _qos, _retain, QThread::currentThread(), _reserved});
        story.append({{QStringLiteral("publish"), _topic},
                      {QStringLiteral("payload"), _payload},
                      {QStringLiteral("retain"), _retain}});
        if (_retain) {
            stored.insert(_topic, _payload);
        }
    }

    void publish_delete(const QString& _topic, qos_t _qos, bool _retain) override {
        const QMutexLocker locker(&lock);
        deletions.append({_topic, _qos, _retain, QThread::currentThread()});
        story.append({{QStringLiteral("delete"), _topic}});
        if (_retain) {
            stored.remove(_topic);
        }
    }

    void set_enable_api_message(bool _enable) override {
        const QMutexLocker locker(&lock);
        switches.append(_enable);
        switch_threads.append(QThread::currentThread());
    }

    void subscription_status_api(subscribe_t _subscribe) override {
        {
            const QMutexLocker locker(&lock);
            changes.append(_subscribe);
            change_threads.append(QThread::currentThread());
            story.append({{QStringLiteral("subscribe"), _subscribe == subscribe_t::subscribe}});
        }
        if (_subscribe == subscribe_t::subscribe) {
            send_retained_status();
        }
    }

    /// Emits api_message as if the broker had sent it; nothing while API messages are disabled.
    void deliver(const QString& _version, const QString& _user, const QString& _client,
                 const QString& _type, const QString& _topic, const QJsonObject& _payload,
                 bool _retain) {
        if (is_enabled()) {
            Q_EMIT api_message(_version, _user, _client, _type, _topic, _payload, _retain);
        }
    }

    // What was asked, in order.
    QList<published_t> published() const { return copy(publications); }
    QList<deleted_t> deleted() const { return copy(deletions); }
    QList<bool> enabled() const { return copy(switches); }
    QList<QThread*> enabled_threads() const { return copy(switch_threads); }
    QList<subscribe_t> subscriptions() const { return copy(changes); }
    QList<QThread*> subscription_threads() const { return copy(change_threads); }
    /// Publications, deletions and subscription changes in one order: {"publish", "payload",
    /// "retain"}, {"delete"} or {"subscribe"}.
    QList<QJsonObject> history() const { return copy(story); }
    /// What a broker would hold now.
    QMap<QString, QJsonValue> retained() const { return copy(stored); }

    /// The payload last published on @p _topic; empty when there was none.
    QJsonObject last(const QString& _topic) const {
        const QMutexLocker locker(&lock);
        for (auto it = publications.crbegin(); it != publications.crend(); ++it) {
            if (it->topic == _topic) {
                return it->payload.toObject();
            }
        }
        return {};
    }

    /// Puts a retained message on the broker that this endpoint has not published.
    void retain(const QString& _topic, const QJsonValue& _payload) {
        const QMutexLocker locker(&lock);
        stored.insert(_topic, _payload);
    }

    /// Forgets what was asked; retained messages and the switch stay.
    void forget() {
        const QMutexLocker locker(&lock);
        publications.clear();
        deletions.clear();
        story.clear();
        changes.clear();
        change_threads.clear();
    }

 private:
    template <class List>
    List copy(const List& _list) const {
        const QMutexLocker locker(&lock);
        return _list;
    }

    bool is_enabled() const {
        const QMutexLocker locker(&lock);
        return !switches.isEmpty() && switches.constLast();
    }

    void send_retained_status() {
        const QMap<QString, QJsonValue> now = retained();
        for (auto it = now.cbegin(); it != now.cend(); ++it) {
            const auto levels = comunication::api_topic_t::parse(it.key());
            if (levels.is_valid() && !levels.is_request()) {
                deliver(levels.version, levels.user, {}, levels.type, it.key(),
                        it.value().toObject(), true);
            }
        }
    }

    mutable QMutex lock;  ///< guards everything below; never held while a signal is emitted
    QList<published_t> publications;
    QList<deleted_t> deletions;
    QList<QJsonObject> story;
    QList<bool> switches;
    QList<QThread*> switch_threads;
    QList<subscribe_t> changes;
    QList<QThread*> change_threads;
    QMap<QString, QJsonValue> stored;
};

}  // namespace fakes
