#pragma once

#include <QJsonObject>

#include "installation/problems_t.h"

namespace database::installation {

/// Checks a document's shape against installation.schema.json: kinds of values, keys that are
/// missing or unknown, permission words. Names and references are installation_rules.h.
problems_t check_shape(const QJsonObject& _document);

}  // namespace database::installation
