#pragma once

#include <QList>

#include "database/database_t.h"
#include "installation/installation_t.h"
#include "live/grant_change_t.h"

namespace database::live {

/// Changes of one import that are listed; of more, the rest is not.
constexpr qsizetype most_grant_changes = 10'000;

/// The grants in memory that are others in @p _next, by names of users and ids of elements. Pure.
QList<grant_change_t> grant_changes(const database_t& _database,
                                    const installation::installation_t& _next);

}  // namespace database::live
