#pragma once

#include <QString>

namespace ets {

/// What a word in the name of a group address says about it.
enum class hint_t {
    none,
    status,
    switching,
    dimming,
    value,
    moving,
    stopping,
    position,
    slat,
    setpoint,
    actual,
    temperature,
    humidity,
    valve,
    mode,
    power,
    socket,
    scene,
};

/// Whether a word of the name says so, in one of the languages that the table has.
bool says(const QString& _name, hint_t _hint);

/// The name without such words, in lower case: what a lamp's switch and its status have in common.
QString base_name(const QString& _name);

/// The number behind the word for a scene, 1 to 64; 0: none.
int scene_number(const QString& _name);

}  // namespace ets
