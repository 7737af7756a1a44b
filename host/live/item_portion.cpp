#include "live/item_portion.h"

#include <algorithm>

namespace database::live {

namespace {

constexpr qsizetype most_items = 8;
constexpr qsizetype most_events = 8'192;  ///< of a portion
constexpr qsizetype long_work = 16'384;   ///< in events
constexpr qsizetype most_as_elements = 64;

}  // namespace

item_portion_t next_item_portion(qsizetype _waiting, qsizetype _listeners, int _under_way,
                                 bool _elements_wait) {
    const qsizetype listeners = std::max<qsizetype>(_listeners, 1);
    const bool is_behind = _under_way > 0 && _waiting > long_work / listeners;
    if (is_behind || _elements_wait) {
        return {std::min(_waiting, most_as_elements), true};
    }
    return {std::clamp<qsizetype>(most_events / listeners, 1, most_items), false};
}

}  // namespace database::live
