#pragma once

#include <QHash>
#include <QObject>
#include <QTimer>

#include "accounts/broker_event_t.h"

namespace torlan {

/// Writes what happens at the broker's door to the log: who signed in, left or was refused. The
/// same by the same is one line and, a minute later, one with how often; so many different things a
/// minute and no more, the others are counted. So nobody fills the log.
class door_log_t : public QObject {
    Q_OBJECT

 public:
    static constexpr qsizetype most_a_minute = 60;

    explicit door_log_t(QObject* _parent = nullptr);
    ~door_log_t() override;

    void tell(const accounts::broker_event_t& _event);
    /// The broker had no room for so many.
    void tell_lost(qint64 _count);

    /// A minute is over.
    void settle();

 private:
    QHash<QString, accounts::broker_event_t> repeated;  ///< count: since it was told
    qint64 hidden = 0;
    QTimer minute;
};

}  // namespace torlan
