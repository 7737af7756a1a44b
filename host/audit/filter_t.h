#pragma once

#include <QString>
#include <optional>

#include "audit/entry_t.h"

namespace audit {

/// Which entries somebody asks for.
struct filter_t {
    QString user{};     ///< empty: any
    QString element{};  ///< empty: any
    qint64 since = 0;   ///< milliseconds since 1970

    bool matches(const entry_t& _entry) const;
};

/// The moment that a person means: "90s", "10m", "2h", "3d" before @p _now, or a time as of ISO
/// 8601, UTC unless it says otherwise. Nothing: it is none. Pure.
std::optional<qint64> since_of(const QString& _text, qint64 _now);

}  // namespace audit
