#pragma once

#include <QJsonArray>
#include <QString>

namespace bench {

QString push_table(const QJsonArray& _rows);
QString storm_table(const QJsonArray& _rows);
/// Times, packets and memory; what was not complete is marked.
QString start_table(const QJsonArray& _rows);
/// Bytes per element, and per element and user, from the differences of sizes.
QString memory_table(const QJsonArray& _rows);
QString change_table(const QJsonArray& _rows);
QString micro_table(const QJsonArray& _rows);
QString peer_table(const QJsonArray& _rows);

}  // namespace bench
