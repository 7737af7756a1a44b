#include "audit/waiting_room_t.h"

#include <utility>

namespace audit {

void waiting_room_t::push(const QString& _part, qint64 _bytes, maker_t _make) {
    held_t& part = parts[_part];
    if (part.count >= limits.of_user || part.bytes + _bytes > limits.bytes_of_user ||
        makers.size() >= limits.of_all || bytes + _bytes > limits.bytes_of_all) {
        const bool is_named = lost.contains(_part) || lost.size() < limits.parts;
        ++lost[is_named ? _part : QString()];
        return;
    }
    ++part.count;
    part.bytes += _bytes;
    bytes += _bytes;
    makers.append(std::move(_make));
    filling = filling || 2 * part.count >= limits.of_user ||
              2 * part.bytes >= limits.bytes_of_user || 2 * makers.size() >= limits.of_all ||
              2 * bytes >= limits.bytes_of_all;
}

waiting_room_t::taken_t waiting_room_t::take() {
    parts.clear();
    bytes = 0;
    filling = false;
    return {std::exchange(makers, {}), std::exchange(lost, {})};
}

}  // namespace audit
