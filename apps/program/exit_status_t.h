#pragma once

namespace torlan {

/// How a program ends; scripts ask for it.
enum exit_status_t {
    status_done = 0,     ///< done, or ended because somebody asked for it
    status_failed = 1,   ///< refused or not possible; a sentence on standard error says why
    status_usage = 2,    ///< the call was wrong
    status_stored = 3,   ///< stored, but a server that runs does not follow yet
    status_unsaved = 4,  ///< ended because asked to, but what it had answered last is not saved
    // Of who asks the API; the servers' own do not meet these.
    status_sign_in = 4,      ///< the broker did not let the user in
    status_silent = 5,       ///< nobody answered, or no connection could be made or kept
    status_unconfirmed = 6,  ///< accepted, but the value did not come
};

}  // namespace torlan
