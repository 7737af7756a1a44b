#pragma once

#include <QByteArray>
#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Writes a new file that its owner alone can read. Refuses to replace one, and to follow a link:
/// whoever can write the folder could have it end up elsewhere. It gets its name when it is whole
/// and on the disk: after a failure there is none, and a program that is killed leaves at most one
/// of another name, ".NAME" with a random end.
base::result_t write_private_file(const QString& _path, const QByteArray& _bytes);

}  // namespace torlan
