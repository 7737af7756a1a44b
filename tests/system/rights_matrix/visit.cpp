#include "system/rights_matrix/attempts.h"
#include "system/rights_matrix/expected.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

kit::raw_connect_t way_in(path_t _path, const QString& _user) {
    switch (_path) {
        case path_t::resumed_session:
            return {.clean = false, .expiry = 100};
        case path_t::will:
        case path_t::delayed_will:
            return {.will = {.topic = request_topic(_user, "set")}};
        case path_t::foreign_will:
            return {.will = {.topic = request_topic(warden(), "set")}};
        default:
            return {};
    }
}

/// Whatever he is about, he has to sign in first.
void try_to_get_in(visitor_t& _visitor) {
    for (int index = 0; index < int(path_t::old_connection); ++index) {
        const auto path = path_t(index);
        if (path == path_t::delayed_will && _visitor.plan.door.version != 5) {
            continue;
        }
        const auto device =
            _visitor.device(_visitor.new_id("try"), way_in(path, _visitor.plan.user));
        _visitor.note(path, device ? outcome_t::allowed : outcome_t::refused);
    }
}

}  // namespace

void visit(const visit_plan_t& _plan, const ports_t& _ports, warden_t* _warden, tally_t* _tally) {
    visitor_t visitor(_plan, _ports, _warden, _tally);
    if (!signs_in(_plan.right)) {
        try_to_get_in(visitor);
        return;
    }
    if (!visitor.come()) {
        visitor.miss("everything");
        return;
    }
    try_states(visitor);
    try_reads(visitor);
    try_listening(visitor);
    try_writes(visitor);
    try_forging(visitor);
    try_wills(visitor);
}

}  // namespace matrix
