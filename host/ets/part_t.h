#pragma once

#include <QString>

#include "ets/project_t.h"

namespace ets {

/// What an address does in a home, as its data point type and its name tell it.
enum class part_t {
    none,  ///< nothing that an element has
    execute,
    dim,
    level,
    percent,  ///< a level or a position: who stands beside it decides
    move,
    stop,
    position,
    slat,
    setpoint,
    temperature,
    valve,
    mode,
    humidity,
    contact,
    power,
    scene,
};

/// The part of an address, by its type first.
part_t part_of(const group_t& _group);

/// Whether it tells a state instead of taking commands: by its type, its name, or that of a group
/// it is in.
bool is_status(const group_t& _group);

/// The type for an item of that part: the address's own where it has a sub-type, else the usual
/// one.
QString type_for(part_t _part, const QString& _dpt);

}  // namespace ets
