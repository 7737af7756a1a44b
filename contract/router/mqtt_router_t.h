#pragma once

#include <QHash>
#include <QJsonValue>
#include <QMap>
#include <QObject>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <vector>

#include "base/locks.h"

namespace mqtt {

/// Order in which routes are tried: higher first, equal ones in the order of registration.
enum class PRIORITY_ROUTE : int { LOW = 0, NORMAL = 1, HIGH = 2 };

/// Finds the handler of an MQTT topic by regular expression.
///
/// Thread-safe: routes may come and go from another thread while a topic is processed; handlers
/// run outside the lock, on the thread that calls process().
class mqtt_router_t : public QObject {
    Q_OBJECT

 public:
    /// Answers one message.
    /// @param topic the whole topic
    /// @param payload as given to process()
    /// @param captures the captured texts: the whole match first, then the groups in order
    /// @param headers as given to process()
    using handler_t = std::function<QJsonValue(const QString& topic, const QVariant& payload,
                                               const QStringList& captures,
                                               const QMap<QString, QVariant>& headers)>;

    explicit mqtt_router_t(QObject* _parent = nullptr);
    ~mqtt_router_t() override;

    /// Registers @p _handler for the topics that @p _pattern matches from end to end. The pattern
    /// is compiled here, once; an existing pattern is replaced. False: not a valid expression.
    bool route(const QString& _pattern, handler_t _handler, PRIORITY_ROUTE _priority);

    /// Takes a pattern out; unknown ones are ignored.
    void route_remove(const QString& _pattern);

    /// Installs the handler for topics that no route matches; an empty one takes it out. Its
    /// captured texts are empty.
    void no_route(handler_t _handler);

    /// The answer of the best matching route, else of the fallback, else an invalid variant.
    QVariant process(const QString& _topic, const QVariant& _payload,
                     const QMap<QString, QVariant>& _headers) const;

 private:
    struct entry_t {
        QString pattern;
        QRegularExpression expression;
        std::shared_ptr<const handler_t> handler;
        PRIORITY_ROUTE priority;
    };
    struct found_t {
        std::shared_ptr<const handler_t> handler;
        QStringList captures;
    };
    found_t find(const QString& _topic) const TORLAN_EXCLUDES(lock);

    mutable base::read_write_lock_t lock;
    std::vector<entry_t> routes TORLAN_GUARDED_BY(lock);  ///< highest priority first
    /// Null: none.
    std::shared_ptr<const handler_t> fallback TORLAN_GUARDED_BY(lock);
};

}  // namespace mqtt
