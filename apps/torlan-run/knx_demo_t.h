#pragma once

#include <QObject>
#include <QTimer>

#include "child_link_t.h"
#include "process/inherited_lock_t.h"
#include "process/supervised_process_t.h"

namespace torlan {

/// A KNX bus without a wire and the devices on it: a private knxd on a socket in the data folder,
/// for its owner only, and torlan-knx-house. Both are started again when they die. Main thread,
/// with an event loop.
class knx_demo_t : public QObject {
    Q_OBJECT

 public:
    /// @param _programs folder of torlan-knx-house; knxd is where programs are
    knx_demo_t(const QString& _data, const QString& _programs, QObject* _parent = nullptr);

    /// Where the bus is, as torlan-server is told.
    QString url() const { return QStringLiteral("local:") + socket; }

    /// Starts the bus; waits some seconds for one of a former start to end. failed() may come
    /// before this returns.
    void start();

    /// The installation is there: its devices are started, and the bus has not failed.
    void start_house();

    /// Ends both, blocking, some seconds at most.
    void stop();

 Q_SIGNALS:
    /// There is no bus; one sentence.
    void failed(const QString& sentence);
    /// Something that somebody should know; one sentence.
    void told(const QString& sentence);

 private:
    void set_up_bus();
    void set_up_house();
    base::result_t check() const;
    base::result_t take_lock();

    const QString data;
    const QString house_program;
    const QString socket;
    process::inherited_lock_t lock;
    child_link_t house_link;
    QTimer settled;  ///< since the bus was started again
    // Ended before the link closes.
    process::supervised_process_t bus;
    process::supervised_process_t house;
};

}  // namespace torlan
