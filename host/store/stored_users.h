#pragma once

#include <QMap>

#include "installation/installation_t.h"

namespace database::store {

/// The users of a database, by id, of any layout and without touching it; none when there is no
/// such file or it cannot be read, which whoever opens it will hear.
QMap<QString, installation::user_t> stored_users(const QString& _path, int _busy_ms);

}  // namespace database::store
