#pragma once

#include <QCoreApplication>
#include <QEvent>

namespace kit {

/// Handles everything that is queued in this thread and what follows from it: a change crosses
/// at most a handful of queued connections. Timers that are not due yet do not run.
inline void settle() {
    for (int crossing = 0; crossing < 8; ++crossing) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

}  // namespace kit
