#pragma once

#include <QList>
#include <QSet>

#include "ets/draft_t.h"
#include "ets/project_t.h"

namespace ets {

/// Makes elements of a project's functions, by what each address of one is there for. Functions of
/// other types make none. Adds to @p _covered the addresses that elements have now: addresses that
/// several functions share, as those for a whole floor, are the rest's.
QList<draft_t> drafts_of_functions(const project_t& _project, QSet<quint16>* _covered);

}  // namespace ets
