#pragma once

#include <QJsonObject>
#include <QStringList>

#include "base/result_t.h"
#include "bench/load/load_client_t.h"
#include "system/support/host_process_t.h"

namespace bench {

/// torlan-server as it is shipped, with lamps and users who may do everything. The limits of what a
/// user may publish are off: the load comes from few users.
class our_home_t {
 public:
    our_home_t(int _lamps, int _users);

    /// Imports and starts it.
    base::result_t start();
    base::result_t import();
    base::result_t start_again();

    /// The users' names; passwords are kit::password_of().
    const QStringList& users() const { return names; }
    door_t door(const QString& _user) const;
    qint64 server_pid() const { return host.pid(); }
    qint64 broker_pid() const { return host.broker_pid(); }
    support::host_process_t& process() { return host; }
    QString data() const { return host.data(); }

 private:
    const int lamps;
    const QStringList names;
    support::host_process_t host;
};

}  // namespace bench
