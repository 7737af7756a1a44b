#pragma once

#include <QHash>
#include <QStringList>

#include "database/database_t.h"

namespace database::live {

/// Ids of the elements that show these items, by the items; one that none shows is left out.
QHash<QString, QStringList> elements_by_item(const database_t& _database,
                                             const QStringList& _items);

}  // namespace database::live
