#pragma once

#include <QtGlobal>

namespace kit {

/// A TCP port on which nobody listens, for a program that has to be told one. It is this process's
/// until it ends: no other test on this machine gets it, and no outgoing connection and nobody who
/// asks the system for any port does, because it lies below the range that those come from. 0: all
/// are taken.
quint16 free_port();

}  // namespace kit
