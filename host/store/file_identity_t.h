#pragma once

#include <sys/types.h>

#include <QString>
#include <optional>

namespace database::store {

/// Which file it is, whatever it is called.
struct file_identity_t {
    dev_t device;
    ino_t number;

    bool operator==(const file_identity_t&) const = default;

    /// Of what @p _path leads to; nothing: there is none.
    static std::optional<file_identity_t> of(const QString& _path);
};

}  // namespace database::store
