#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include "base/result_t.h"
#include "bench/load/load_client_t.h"

namespace bench {

/// The Node-RED flow of bench/peers as one user of a broker, in a private folder of its own.
class peer_process_t {
 public:
    peer_process_t();
    /// Ends it.
    ~peer_process_t();
    Q_DISABLE_COPY_MOVE(peer_process_t)

    /// @param _installed the folder with node_modules and the flow
    base::result_t start(const QString& _installed, const door_t& _door);
    qint64 pid() const { return process.processId(); }

 private:
    bool furnish(const QString& _installed, const door_t& _door) const;

    QTemporaryDir folder;
    QProcess process;
};

}  // namespace bench
