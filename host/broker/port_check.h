#pragma once

#include <QList>
#include <functional>

#include "base/result_t.h"

namespace broker {

/// Says who listens on a port of 127.0.0.1, e.g. "process 17 (nc) of user 1000"; empty: unknown.
using port_holder_t = std::function<QString(quint16)>;

/// Whether nobody listens on a port of 127.0.0.1 now.
bool is_port_free(quint16 _port);

/// Ok: all of them are free, 0 is none. Else a sentence about the first that is not. @p _holder may
/// be null.
base::result_t check_ports(const QList<quint16>& _ports, const port_holder_t& _holder);

}  // namespace broker
