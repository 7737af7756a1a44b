#pragma once

namespace matrix {

/// The ways on which something of an element could reach a user, or something of a user an element.
enum class path_t {
    read_one,
    read_all,
    filtered_read,
    own_answers,  ///< to what another device of the user has asked
    write_one,
    write_many,
    retained_state,    ///< there when the user subscribes
    pushed_state,      ///< after a change
    own_group,         ///< the same in a shared subscription of the user's own tree
    resumed_session,   ///< what waited while the user was away
    everything,        ///< "#" and "+/#"
    any_user,          ///< '+' in the place of the name
    foreign_group,     ///< a shared subscription of another user's tree
    foreign_state,     ///< another user's, by its name
    foreign_answers,   ///< to another user, by their name
    foreign_request,   ///< in another user's name
    forged_state,      ///< and answers, in the user's own tree
    forged_elsewhere,  ///< the same in another user's tree
    retained_request,
    will,
    delayed_will,
    foreign_will,    ///< a request in another user's name, or a state
    old_connection,  ///< of before a change of rights
    old_session,     ///< and what waited in it then
    old_will,        ///< was due after the change
};

constexpr int path_count = int(path_t::old_will) + 1;

/// As reports call it.
const char* name_of(path_t _path);

}  // namespace matrix
