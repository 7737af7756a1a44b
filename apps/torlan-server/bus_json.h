#pragma once

#include <QDateTime>
#include <QJsonObject>

#include "bus/bus_counters_t.h"
#include "bus/bus_telegram_t.h"

/// What tools are told of a bus. Pure.
namespace torlan {

/// What is not known is left out; the source of an own telegram is "".
QJsonObject telegram_json(const bus::bus_telegram_t& _telegram, const QDateTime& _time);

QJsonObject counters_json(const bus::bus_counters_t& _counters);

}  // namespace torlan
