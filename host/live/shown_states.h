#pragma once

#include <QList>
#include <set>

#include "database/database_t.h"
#include "installation/installation_t.h"
#include "live/shown_state_t.h"

/// What users may read, in memory and in an installation that is to come. Host thread only.
namespace database::live {

/// What any user may read of these elements, and these users (by id) of any element. Each once, in
/// no order.
QList<shown_state_t> shown_states(const database_t& _database, const std::set<QString>& _elements,
                                  const std::set<QString>& _users);

/// Of these, in order, what nobody of that name may read by now.
QList<shown_state_t> not_shown(const database_t& _database, QList<shown_state_t> _states);

/// Whether somebody of that name may read it now.
bool is_shown(const database_t& _database, const shown_state_t& _state);

/// What users may read now and could not if @p _next were all there is.
QList<shown_state_t> hidden_by(const database_t& _database,
                               const installation::installation_t& _next);

}  // namespace database::live
