#pragma once

#include <QByteArray>
#include <QString>

#include "base/result_t.h"

/// A backup is a database as any other, with one more table that holds the settings' document.
namespace database::store {

/// Writes the state of one moment into a new file of its owner's alone, while servers may run. The
/// file gets its name when it is whole and on the medium; one that is there is not replaced.
::base::result_t write_backup(const QString& _path, const QString& _backup,
                              const QByteArray& _settings, int _busy_ms);

/// Makes a database of a backup, or of any other copy, at a name that nothing has, on the medium
/// when this returns. What is no sound installation database of this program is refused.
/// @return the settings' document; empty: there is none in it
::base::result_of_t<QByteArray> unpack_backup(const QString& _backup, const QString& _path,
                                              int _busy_ms);

}  // namespace database::store
