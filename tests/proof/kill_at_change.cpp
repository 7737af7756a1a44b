// To be preloaded into a program: kills it right before its n-th change of a file,
// TORLAN_KILL_AT_CHANGE, or not at all.
#include <cstdlib>

#include "kit/killed_child.h"

namespace {

[[gnu::constructor]] void begin() {
    if (const char* const number = std::getenv("TORLAN_KILL_AT_CHANGE")) {
        killed_child::calls_left = std::atoi(number);
        killed_child::only = ::getpid();
    }
    // Its children live.
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("TORLAN_KILL_AT_CHANGE");
}

}  // namespace
