#pragma once

#include <QStringList>

#include "base/result_t.h"
#include "bench/load/load_client_t.h"
#include "broker/broker_process_t.h"

namespace bench {

/// A second broker for raw pairs, started by the server's own code: the same configuration, plugin,
/// accounts and access rules, without a server.
class raw_broker_t {
 public:
    explicit raw_broker_t(const QStringList& _users);

    base::result_t start();

    door_t door(const QString& _user) const;
    /// The host's own, which may do everything, over the unix socket.
    door_t host_door() const;
    qint64 pid() const { return process.process_id(); }

 private:
    const QStringList users;
    const broker::broker_settings_t settings;
    broker::broker_process_t process;
};

}  // namespace bench
