#pragma once

#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Makes @p _folder, where other programs of this machine look for the client file, with its
/// subfolder "config": what is missing of it, enterable by all users. A failure, and a folder that
/// is not named, is a line in the log: the server runs without.
///
/// Not ok: the folder or the file in it is a link, or other users could change it; what is written
/// there now would go where they say.
base::result_t make_client_folder(const QString& _folder);

}  // namespace torlan
