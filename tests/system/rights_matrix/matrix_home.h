#pragma once

#include <QJsonObject>
#include <QString>

#include "system/rights_matrix/change_t.h"

namespace matrix {

/// The user who has each right; "removed" has all of them until somebody removes him.
QString user_with(right_t _right);

/// Has every right, in quiet or in a storm, until this change.
QString victim_of(change_t _change, bool _storm);

/// May do everything at any time.
inline QString warden() {
    return QStringLiteral("warden");
}

/// The sample's own elements, one of each kind, items without a direction or a range: rights alone
/// decide. Besides, lamps that fences are made of, and lamps for a storm, which the warden and the
/// victims of a storm may read and write.
QJsonObject matrix_home(const QString& _sample_file);

constexpr const char* fence_lamp = "e-fence";
constexpr const char* will_lamp = "e-will";  ///< for a fence by a last will

}  // namespace matrix
