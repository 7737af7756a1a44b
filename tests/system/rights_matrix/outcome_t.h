#pragma once

namespace matrix {

/// What came of an attempt. A cell of the matrix leaks when it is allowed and should not be.
enum class outcome_t {
    allowed,  ///< it was delivered, or has changed something
    refused,  ///< it was told so
    silent,   ///< nothing came of it, without a word
};

constexpr const char* name_of(outcome_t _outcome) {
    constexpr const char* names[] = {"allowed", "refused", "silent"};
    return names[int(_outcome)];
}

}  // namespace matrix
