#pragma once

#include "kit/lamps_home.h"
#include "kit/small_home.h"

namespace support {

/// Lamps, users who may do everything, and "nobody" with an account and no right.
inline QJsonObject loaded_home(int _lamps, int _users) {
    return kit::with(kit::lamps_home(_lamps, 16, kit::numbered_users(_users)), "users/u-nobody",
                     QJsonObject{{"username", "nobody"}, {"password", kit::password_of("nobody")}});
}

}  // namespace support
