#include "endpoint/token_bucket_t.h"

#include <algorithm>

namespace comunication {

bool token_bucket_t::take(double _cost, std::chrono::milliseconds _now) {
    if (per_second <= 0) {
        return true;
    }
    const double passed = std::chrono::duration<double>(_now - filled).count();
    level = std::min(per_second, level + passed * per_second);
    filled = _now;
    if (level <= 0) {
        return false;
    }
    level -= _cost;
    return true;
}

}  // namespace comunication
