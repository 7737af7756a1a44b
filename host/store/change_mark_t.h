#pragma once

#include <QJsonObject>
#include <optional>

#include "store/file_identity_t.h"

namespace database::store {

/// A point in the history of one database file: everything up to the change of that number.
struct change_mark_t {
    file_identity_t file;
    qint64 sequence;

    bool operator==(const change_mark_t&) const = default;

    /// Numbers as texts: JSON's own lose digits.
    QJsonObject to_json() const;
    /// Nothing: @p _json is none.
    static std::optional<change_mark_t> from_json(const QJsonObject& _json);
};

}  // namespace database::store
