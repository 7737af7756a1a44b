#pragma once

#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPointer>
#include <deque>

#include "control/asker_t.h"
#include "live/live_bus_port_t.h"

namespace torlan {

/// Shows askers what passes on the bus: link, counters, the last telegrams, and, when they want to
/// follow, each one that comes. Main thread.
class bus_watch_t : public QObject {
    Q_OBJECT

 public:
    /// Telegrams that are kept.
    static constexpr std::size_t most_telegrams = 100;

    explicit bus_watch_t(QObject* _parent = nullptr);
    ~bus_watch_t() override;

    /// Null: there is no bus. It outlives this object, or the next call of this.
    void follow(database::live::live_bus_port_t* _bus);

    /// Takes a question {"follow": bool}, answered with a line of what is known and, for who
    /// follows, a line {"telegram": ...} for each; "lost" says how many were left out before it.
    void take(control::asker_t* _asker, const QJsonObject& _question);

    /// What is known without telegrams; empty: there is no bus.
    QJsonObject state() const;

 private:
    struct follower_t {
        QPointer<control::asker_t> asker;
        qint64 lost = 0;  ///< telegrams that it was too slow for
    };

    void on_telegram(const bus::bus_telegram_t& _telegram);

    QPointer<database::live::live_bus_port_t> bus;
    std::deque<QJsonObject> telegrams;
    QList<follower_t> followers;
};

}  // namespace torlan
