#pragma once

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

namespace support {

/// Topics of the states that the database in this data folder lets a user read.
QSet<QByteArray> states_due(const QString& _data, const QString& _username);

/// Payloads of the states that the broker has for a user, by topic: signs in until the broker has
/// time for the password, 30 s at most. Blocks. Nothing: not let in, or there is none.
QMap<QByteArray, QByteArray> states_retained(quint16 _port, const QString& _username,
                                             const QString& _password);

}  // namespace support
