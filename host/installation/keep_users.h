#pragma once

#include <QStringList>

#include "installation/installation_t.h"

namespace database::installation {

/// Brings the users of the installation that is replaced into the next one, with their passwords
/// and grants; what the next one says counts for users and elements that are new only. So a grant
/// that was withdrawn stays withdrawn. A user is the same by the name, whatever the identifier.
/// @return what did not fit any more, a sentence each
QStringList keep_users(const installation_t& _former, installation_t* _next);

}  // namespace database::installation
