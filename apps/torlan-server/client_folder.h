#pragma once

#include <QString>

namespace torlan {

/// Makes @p _folder, where other programs of this machine look for the client file, with its
/// subfolder "config": what is missing of it, enterable by all users. A failure, and a folder that
/// is not named, is a line in the log: the server runs without.
void make_client_folder(const QString& _folder);

}  // namespace torlan
