#pragma once

#include <signal.h>
#include <sys/prctl.h>

#include <QProcess>

namespace kit {

/// A killed test leaves no program behind: the kernel ends the child with the thread that starts
/// it.
inline void end_with_test(QProcess* _child) {
    _child->setChildProcessModifier([]() { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

}  // namespace kit
