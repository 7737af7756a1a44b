#pragma once

#include <QtGlobal>

namespace ets {

/// How much is taken from a file that nobody vouches for. The defaults are far above any house.
struct limits_t {
    qint64 file_bytes = qint64(256) << 20;   ///< the project or export itself
    qint64 entry_bytes = qint64(256) << 20;  ///< one file inside, unpacked
    qint64 total_bytes = qint64(1) << 30;    ///< all that is unpacked
    int entries = 100'000;                   ///< files inside
    int links = 1'000'000;                   ///< of communication objects to addresses
};

/// How large a token, such as a start tag with its attributes, may be, and how deep tags may go.
constexpr qint64 max_token_bytes = 4 << 20;
constexpr int max_depth = 200;

}  // namespace ets
