#pragma once

#include <QList>
#include <functional>
#include <set>

#include "database/database_t.h"
#include "installation/installation_t.h"
#include "live/shown_state_t.h"

/// What users may read, in memory and in an installation that is to come. Host thread only.
namespace database::live {

using shown_states_t = std::set<shown_state_t>;

/// What any user may read of these elements, and these users (by id) of any element.
shown_states_t shown_states(const database_t& _database, const std::set<QString>& _elements,
                            const std::set<QString>& _users);

/// What users may read now and could not if @p _next were all there is.
QList<shown_state_t> hidden_by(const database_t& _database,
                               const installation::installation_t& _next);

}  // namespace database::live
