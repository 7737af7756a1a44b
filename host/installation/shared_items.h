#pragma once

#include <QStringList>

#include "installation/installation_t.h"

namespace database::installation {

/// What several elements stand on, so that a right on one of them reaches the others: one sentence
/// for each item or scenario, a bounded number, the rest counted.
QStringList shared_items(const installation_t& _installation);

}  // namespace database::installation
