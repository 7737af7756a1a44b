#include "system/rights_matrix/expected.h"

#include <iterator>

#include "system/rights_matrix/change_t.h"

namespace matrix {

namespace {

struct row_t {
    path_t path;
    const char* name;
    /// A allowed, R refused, S silent; in the order of right_t.
    const char* outcomes;
};

// clang-format off
constexpr row_t rows[] = {
    //                                             readwrite
    //                                             |read
    //                                             ||write
    //                                             |||deny
    //                                             ||||unlisted
    //                                             |||||removed
    //                                             ||||||unknown
    {path_t::read_one,         "read one",         "AARRRRR"},
    {path_t::read_all,         "read all",         "AASSSRR"},
    {path_t::filtered_read,    "filtered read",    "AARRRRR"},
    {path_t::own_answers,      "own answers",      "AARRRRR"},
    {path_t::write_one,        "write one",        "ARARRRR"},
    {path_t::write_many,       "write many",       "ARARRRR"},
    {path_t::retained_state,   "retained state",   "AASSSRR"},
    {path_t::pushed_state,     "pushed state",     "AASSSRR"},
    {path_t::own_group,        "own group",        "AASSSRR"},
    {path_t::resumed_session,  "resumed session",  "AASSSRR"},
    {path_t::everything,       "#",                "RRRRRRR"},
    {path_t::any_user,         "+",                "RRRRRRR"},
    {path_t::foreign_group,    "foreign group",    "RRRRRRR"},
    {path_t::foreign_state,    "foreign state",    "RRRRRRR"},
    {path_t::foreign_answers,  "foreign answers",  "RRRRRRR"},
    {path_t::foreign_request,  "foreign request",  "RRRRRRR"},
    {path_t::forged_state,     "forged state",     "RRRRRRR"},
    {path_t::forged_elsewhere, "forged elsewhere", "RRRRRRR"},
    {path_t::retained_request, "retained request", "RRRRRRR"},
    {path_t::will,             "will",             "ARARRRR"},
    {path_t::delayed_will,     "delayed will",     "ARARRRR"},
    // It is judged when it is due, and its user has gone then.
    {path_t::foreign_will,     "foreign will",     "SSSSSRR"},
    {path_t::old_connection,   "old connection",   "AASSSRR"},
    // Who may read less has no session left, nor a last will in one.
    {path_t::old_session,      "old session",      "AASSSRR"},
    {path_t::old_will,         "old will",         "ASSSSSS"},
};
// clang-format on

static_assert(std::size(rows) == path_count);

/// Before version 5 the answer to a message has no room for a refusal, in 3.1 none has to a
/// subscription.
bool is_without_word(path_t _path, int _version) {
    const bool is_listening = _path >= path_t::everything && _path <= path_t::foreign_answers;
    const bool is_message = _path >= path_t::foreign_request && _path <= path_t::retained_request;
    return (_version < 5 && is_message) || (_version < 4 && is_listening);
}

}  // namespace

const char* name_of(path_t _path) {
    return rows[int(_path)].name;
}

outcome_t expected(right_t _right, path_t _path, bool _hidden, int _version) {
    const right_t right = _hidden && signs_in(_right) ? right_t::unlisted : _right;
    switch (rows[int(_path)].outcomes[int(right)]) {
        case 'A':
            return outcome_t::allowed;
        case 'R':
            return signs_in(right) && is_without_word(_path, _version) ? outcome_t::silent
                                                                       : outcome_t::refused;
        default:
            return outcome_t::silent;
    }
}

right_t right_after(change_t _change) {
    constexpr right_t rights[] = {right_t::unlisted, right_t::deny,    right_t::read,
                                  right_t::write,    right_t::removed, right_t::removed,
                                  right_t::unlisted};
    return rights[int(_change)];
}

}  // namespace matrix
