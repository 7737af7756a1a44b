#include "ets/metered_device_t.h"

namespace ets {

qint64 metered_device_t::readData(char* _data, qint64 _size) {
    if (left <= 0) {
        refused = true;
        return -1;
    }
    const qint64 count = source->read(_data, qMin(_size, left));
    if (count < 0) {
        failed = true;
        return -1;
    }
    left -= count;
    passed += count;
    return count;
}

}  // namespace ets
