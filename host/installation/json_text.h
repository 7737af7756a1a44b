#pragma once

#include <QByteArray>
#include <QJsonObject>

#include "base/result_t.h"

namespace database::installation {

/// Parses a JSON text whose root is an object; an error is "line 3, column 7: ...". A key that
/// stands twice in one object is one: Qt's parser would silently take the last. Columns count
/// characters, from 1.
::base::result_of_t<QJsonObject> parse_json(const QByteArray& _bytes);

}  // namespace database::installation
