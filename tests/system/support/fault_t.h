#pragma once

#include <functional>
#include <vector>

#include "system/support/run_process_t.h"

namespace support {

/// Something that happens to a running installation and is over when happens() returns.
struct fault_t {
    const char* name;
    std::function<void(run_process_t& _run)> happens;
};

/// Each program stands still (SIGSTOP); one that is replaced meanwhile is not waited for.
std::vector<fault_t> halts(int _lasting_ms);

/// Each port is somebody else's from the moment on at which its program dies.
std::vector<fault_t> taken_ports(int _lasting_ms);

/// The database is kept locked by another program.
std::vector<fault_t> locks(int _lasting_ms);

}  // namespace support
