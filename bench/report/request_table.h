#pragma once

#include <QJsonArray>
#include <QString>

namespace bench {

/// What holds for the lane of this name in a row of results; empty: there is none.
QJsonObject lane_of(const QJsonObject& _row, const QString& _name);

/// The median over the rounds of what @p _ours is of @p _theirs in the same round.
double ratio(const QJsonObject& _ours, const QJsonObject& _theirs, const QString& _key);

/// The median over the rounds of a lane's own.
double middle(const QJsonObject& _lane, const QString& _key);

/// Rates, waits, ratios and processor time of "requests".
QString request_table(const QJsonArray& _rows);
QString request_cost_table(const QJsonArray& _rows);

}  // namespace bench
