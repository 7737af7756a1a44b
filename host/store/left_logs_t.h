#pragma once

#include <optional>

#include "store/file_identity_t.h"

namespace database::store {

/// The write-ahead log of an open database with its index. When the file is removed or replaced
/// under its reader they stay where they were, and whoever opens the new file takes them for its.
class left_logs_t {
 public:
    /// Those that @p _database has now.
    explicit left_logs_t(const QString& _database);

    /// Takes away what is still these files, unless another program uses them. To be called after
    /// the last connection of this process is closed.
    void remove() const;

 private:
    const QString log;
    const QString index;
    const std::optional<file_identity_t> log_file;
    const std::optional<file_identity_t> index_file;
};

}  // namespace database::store
