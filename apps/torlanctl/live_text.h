#pragma once

#include <QJsonObject>
#include <QString>

/// What a server tells of itself, as people read it. Pure.
namespace torlan {

/// Several lines.
QString status_text(const QJsonObject& _status);

/// Link and counters, two lines.
QString bus_text(const QJsonObject& _bus);

/// One line; control characters of values do not come through.
QString telegram_text(const QJsonObject& _telegram);

}  // namespace torlan
