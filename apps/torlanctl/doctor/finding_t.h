#pragma once

#include <QList>
#include <QString>

namespace torlan {

enum class health_t {
    ok,
    unchecked,  ///< could not be looked at; says why
    warning,    ///< works, but somebody should know
    problem,    ///< something does not work, or is not safe
};

/// What was looked at, and what it is like.
struct finding_t {
    QString about;  ///< "ports"
    health_t health = health_t::ok;
    QString text;  ///< a clause

    bool operator==(const finding_t&) const = default;
};

using findings_t = QList<finding_t>;

}  // namespace torlan
