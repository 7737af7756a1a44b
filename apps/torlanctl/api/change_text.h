#pragma once

#include <QByteArray>
#include <QDateTime>

#include "api/readings_t.h"

/// A change as a line of its own, with its end. Nothing in it steers a terminal but the colours
/// that are asked for. Pure.
namespace torlan {

enum class colours_t { none, ansi };

/// "12:00:00.000  e-lamp  execute  1"
QByteArray change_text(const readings_t::change_t& _change, const QDateTime& _time,
                       colours_t _colours);

/// {"time", "element", "function", "value"} or {"time", "element", "gone": true}
QByteArray change_json(const readings_t::change_t& _change, const QDateTime& _time);

}  // namespace torlan
