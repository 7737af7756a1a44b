#pragma once

#include "system/rights_matrix/visitor_t.h"

/// What a visitor tries, and notes. Each tries with all elements.
namespace matrix {

/// Requests of his own, to read.
void try_reads(visitor_t& _visitor);
/// States that are retained, pushed, shared, and that waited.
void try_states(visitor_t& _visitor);
/// Requests of his own, to write, one of them retained.
void try_writes(visitor_t& _visitor);
/// Other users' states and answers by every filter.
void try_listening(visitor_t& _visitor);
/// Requests of others, and states and answers that only the server tells.
void try_forging(visitor_t& _visitor);
/// Last wills.
void try_wills(visitor_t& _visitor);

/// Everything, or for who is not let in, that nobody is on any path.
void visit(const visit_plan_t& _plan, const ports_t& _ports, warden_t* _warden, tally_t* _tally);

}  // namespace matrix
