#pragma once

#include <QString>
#include <functional>

#include "base/result_t.h"

namespace torlan {

/// Runs a small HTTP server of ours on loopback until it is asked to stop or its supervisor has
/// gone, and gives the program's exit status. Started by root it gives up what root may do, for
/// @p _user (empty: stays) first. @p _start listens and yields the port. @p _supervisor: as for
/// supervisor_link_t, which is told that it is ready; without one the terminal is. Main thread,
/// with a QCoreApplication.
int serve_loopback(const QString& _user, int _supervisor,
                   const std::function<base::result_of_t<quint16>()>& _start);

}  // namespace torlan
