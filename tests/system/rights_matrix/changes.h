#pragma once

#include <QString>
#include <QStringList>

#include "system/rights_matrix/change_t.h"

namespace matrix {

/// The statements that make a change of a user, all in one commit.
QStringList statements_for(change_t _change, const QString& _user);

/// Every right on every element.
QString all_granted(const QString& _user);

}  // namespace matrix
