#pragma once

#include "base/locks.h"

namespace interfaces {

/// Tells calls that wait in another thread's event queue whether their object still lives.
///
/// The object and its queued calls share one of these. A call holds the read lock while it runs;
/// end() waits for it and makes every later one do nothing. Any thread.
class call_lifetime_t {
 public:
    /// Runs @p _call if the object lives; false if it does not.
    template <class Call>
    bool run(const Call& _call) {
        const base::read_locker_t locker(&lock);
        if (alive) {
            _call();
        }
        return alive;
    }

    /// To be called before the object's members go. May be called twice.
    void end();

 private:
    base::read_write_lock_t lock;
    bool alive TORLAN_GUARDED_BY(lock) = true;
};

}  // namespace interfaces
