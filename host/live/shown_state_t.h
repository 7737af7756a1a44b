#pragma once

#include <QString>
#include <tuple>

namespace database::live {

/// The state of an element as one user sees it. By name, as topics go: a user who is renamed, or
/// gone, leaves behind what was shown under the former name.
struct shown_state_t {
    QString username;
    QString element;

    bool operator==(const shown_state_t&) const = default;
    bool operator<(const shown_state_t& _other) const {
        return std::tie(username, element) < std::tie(_other.username, _other.element);
    }
};

}  // namespace database::live
