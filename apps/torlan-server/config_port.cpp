#include "config_port.h"

#include "program/socket_owner_t.h"

namespace torlan {

base::result_t judge_config_port(quint16 _port) {
    const QList<uid_t> users = socket_owner_t::of_listeners(_port);
    for (const uid_t user : users) {
        if (!socket_owner_t::is_trusted(user)) {
            return base::result_t::failed(
                QStringLiteral("Port %1 of 127.0.0.1, where the configuration server should be, is "
                               "held by user %2, who is not trusted with the settings.")
                    .arg(_port)
                    .arg(user));
        }
    }
    return {};
}

}  // namespace torlan
