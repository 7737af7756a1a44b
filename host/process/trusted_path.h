#pragma once

#include <sys/stat.h>

#include <QString>

#include "base/result_t.h"

/// Whether other users of this machine can change what lies at a path. No others are root, the user
/// of this process, and the owner of its program, who decides what it does anyway.
namespace process {

/// No others can change what the file or folder holds. A group counts as others, unless it is
/// root's or its owner's alone: of the same name and without other members.
bool is_only_ours(const struct stat& _status);

/// That of what is at @p _path and of every folder above it, links followed; in a folder that all
/// can write but where nobody can touch what belongs to others (mode 01777), what is ours is safe.
/// Up to the first folder that this process's program is in, too: who can change that, changes the
/// program. Else one sentence that names the first of them that is not.
base::result_t check_only_ours(const QString& _path);

}  // namespace process
