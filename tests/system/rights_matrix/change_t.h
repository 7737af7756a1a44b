#pragma once

#include "system/rights_matrix/right_t.h"

namespace matrix {

/// What happens to a user who had every right.
enum class change_t {
    withdrawn,     ///< the grants are gone
    denied,        ///< they say "deny"
    read_only,     ///< "read"
    write_only,    ///< "write"
    removed,       ///< the user is gone
    new_password,  ///< the former one is tried
    recreated,     ///< the name and the password are those of another user without grants
};

constexpr int change_count = int(change_t::recreated) + 1;

constexpr const char* name_of(change_t _change) {
    constexpr const char* names[] = {"withdrawn", "denied",       "read-only", "write-only",
                                     "removed",   "new-password", "recreated"};
    return names[int(_change)];
}

/// What the user may do afterwards.
right_t right_after(change_t _change);

}  // namespace matrix
