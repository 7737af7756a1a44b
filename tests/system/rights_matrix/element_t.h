#pragma once

#include <QByteArray>
#include <QList>

namespace matrix {

/// An element of the sample that stands for its kind.
struct element_t {
    QByteArray id;
    QByteArray function;  ///< which is written, and whose value tells a change
    QByteArray filter;    ///< the last segment of it
    int type;
    bool is_hidden = false;    ///< of a type that the API does not show
    bool is_switch = false;    ///< knows 0 and 1 only
    bool takes_writes = true;  ///< a write has an effect
};

inline const QList<element_t>& elements() {
    static const QList<element_t> all{
        {"e-kitchen-ceiling", "execute", "execute", 1},
        {"e-kitchen-table", "level", "level", 2},
        {"e-kitchen-blind", "position", "position", 3},
        {"e-kitchen-coffee", "execute", "execute", 4},
        {"e-hall-shoes", "execute", "execute", 4},  // has a function without an item besides
        {"e-kitchen-temperature", "temperature", "temperature", 5},
        {"e-kitchen-humidity", "humidity", "humidity", 6},
        {"e-kitchen-window", "open", "open", 7},
        {.id = "e-scene-night",
         .function = "execute",
         .filter = "execute",
         .type = 8,
         .is_switch = true},
        // Its functions are items by its flags, and what writes a scenario finds none.
        {.id = "e-scene-panic",
         .function = "siren",
         .filter = "siren",
         .type = 8,
         .takes_writes = false},
        {"e-bedroom-thermostat", "thermo/setpoint", "setpoint", 17},
        {.id = "e-service-coupler",
         .function = "errors",
         .filter = "errors",
         .type = 11,
         .is_hidden = true,
         .takes_writes = false},
        {.id = "e-service-pump",
         .function = "hours",
         .filter = "hours",
         .type = 14,
         .is_hidden = true,
         .takes_writes = false},
    };
    return all;
}

}  // namespace matrix
