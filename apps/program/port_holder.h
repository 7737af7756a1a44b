#pragma once

#include <QString>

namespace torlan {

/// Who listens on a port of 127.0.0.1, as far as the kernel shows it to us, e.g. "process 17 (nc)
/// of user 1000" or "a process of user 1000"; empty: nobody.
QString port_holder(quint16 _port);

}  // namespace torlan
