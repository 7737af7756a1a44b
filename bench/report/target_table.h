#pragma once

#include <QJsonObject>
#include <QString>

namespace bench {

/// What is to be reached, what was measured, and whether that is it.
QString target_table(const QJsonObject& _results);

}  // namespace bench
