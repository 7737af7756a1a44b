#include "drivers/driver/capability/call_lifetime_t.h"

namespace interfaces {

void call_lifetime_t::end() {
    const base::write_locker_t locker(&lock);
    alive = false;
}

}  // namespace interfaces
