#pragma once

#include <sys/types.h>

#include <QString>
#include <optional>

namespace comunication {

/// The process that listens at the other end of a connected unix socket, as the kernel knows it;
/// nothing: it is none. Whoever has the descriptor now, the process counts that began to listen.
std::optional<pid_t> process_behind(int _socket);

/// The same for who would take a connection at @p _path. Nothing: nobody does, or not now. Does
/// not wait.
std::optional<pid_t> listening_process(const QString& _path);

}  // namespace comunication
