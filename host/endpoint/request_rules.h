#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include "endpoint/request_limits_t.h"
#include "endpoint/request_t.h"

/// What a request may hold. Pure functions.
namespace comunication::request_rules {

/// Whether a list in "filters" has too many entries or a text in "data" is too long.
bool is_too_large(const QJsonObject& _payload, const request_limits_t& _limits);

/// Whether it reads one element and brings little: a matter of microseconds for whoever answers.
bool is_small(const request_t& _request);

/// The text behind "uuid" at the top of the object that @p _payload begins with; empty: none, or
/// none of at most 1,024 bytes. Finds it without reading what else is there, which may be large or
/// broken.
QString uuid_of(const QByteArray& _payload);

/// What a refused request is answered with. Clients parse these texts; keep them.
QJsonObject malformed(const QString& _uuid = {});
QJsonObject too_many(const QString& _uuid);
QJsonObject too_large(const QString& _uuid);
QJsonObject too_large_an_answer(const QString& _uuid);

}  // namespace comunication::request_rules
