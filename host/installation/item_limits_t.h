#pragma once

#include <optional>

namespace database::installation {

/// What clients may ask of an item; the default is anything. What the bus reports is not bound.
struct item_limits_t {
    bool writable = true;
    std::optional<double> min = {};
    std::optional<double> max = {};
    std::optional<double> step = {};  ///< values are whole steps away from min, or from 0
    bool operator==(const item_limits_t&) const = default;
};

}  // namespace database::installation
