#pragma once

#include <QByteArray>
#include <QStringList>

#include "gate/refusal_t.h"

namespace torlan {

/// The keys that lead from the document's root to a value, read from an address's path.
struct settings_path_t {
    static constexpr qsizetype max_bytes = 2048;      ///< of the encoded path
    static constexpr qsizetype max_depth = 32;        ///< keys
    static constexpr qsizetype max_key_length = 255;  ///< characters

    QStringList keys;  ///< empty: the whole document
    refusal_t refusal;

    /// @p _encoded begins with "/" and is percent-encoded; one trailing "/" adds nothing. Refused:
    /// empty keys, "." and "..", control characters, an encoded "/", text that is not UTF-8,
    /// paths beyond the limits.
    static settings_path_t parse(const QByteArray& _encoded);
};

}  // namespace torlan
