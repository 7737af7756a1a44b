#pragma once

#include <sys/types.h>

#include <QString>
#include <optional>

namespace accounts {

/// The process that listens on the unix socket at @p _path, as the kernel knows it. Nothing: none
/// does, or it takes no connection now. Does not wait.
std::optional<pid_t> listening_process(const QString& _path);

}  // namespace accounts
