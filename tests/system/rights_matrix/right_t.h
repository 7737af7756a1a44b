#pragma once

namespace matrix {

/// What a user may do with every element, or why there is no such user.
enum class right_t { readwrite, read, write, deny, unlisted, removed, unknown };

constexpr int right_count = 7;

constexpr bool signs_in(right_t _right) {
    return _right < right_t::removed;
}

constexpr const char* name_of(right_t _right) {
    constexpr const char* names[] = {"readwrite", "read",    "write",  "deny",
                                     "unlisted",  "removed", "unknown"};
    return names[int(_right)];
}

}  // namespace matrix
