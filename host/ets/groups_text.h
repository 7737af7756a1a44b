#pragma once

#include <QByteArray>

#include "ets/project_t.h"

namespace ets {

/// The group addresses as a JSON array, sorted by raw address: "address" in the project's style,
/// "name", "description", and "dpt", null where nothing is known. A line feed at the end.
QByteArray groups_text(const project_t& _project);

}  // namespace ets
