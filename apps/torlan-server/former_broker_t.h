#pragma once

#include <QObject>
#include <QString>
#include <chrono>

#include "base/result_t.h"
#include "process/inherited_lock_t.h"

namespace torlan {

/// Waits for the broker that a killed server has left: it ends by itself, but a large one takes its
/// time, and holds the port until then. Main thread, with an event loop.
class former_broker_t : public QObject {
    Q_OBJECT

 public:
    /// @param _file that each broker of this data folder holds as long as it runs
    explicit former_broker_t(const QString& _file, QObject* _parent = nullptr);

    /// Returns when there is none, or after @p _limit; handles events meanwhile.
    base::result_t wait(std::chrono::milliseconds _limit = std::chrono::seconds(30));

    /// Makes wait() fail soon.
    void give_up();

    /// What the next broker has to inherit.
    int descriptor() const { return lock.descriptor(); }

 Q_SIGNALS:
    /// There is one; one sentence.
    void waiting(const QString& _sentence);

 private:
    const QString file;
    process::inherited_lock_t lock;
    bool is_given_up = false;
};

}  // namespace torlan
