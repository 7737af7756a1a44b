#pragma once

#include <QString>

namespace database::live {

/// What a user may do with an element, before and after; see contract/database/permission.h.
struct grant_change_t {
    QString username;
    QString element;
    int before = 0;
    int after = 0;

    bool operator==(const grant_change_t&) const = default;
};

}  // namespace database::live
