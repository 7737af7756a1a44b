#pragma once

#include <QStringList>

#include "store/kind_t.h"

namespace database::store {

/// The names of a kind that begin with @p _begun, in order, @p _most at most; of users their user
/// names. The file is only read; none when it is not there or cannot be read.
QStringList stored_names(const QString& _path, kind_t _kind, const QString& _begun, int _most);

}  // namespace database::store
