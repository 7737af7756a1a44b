#pragma once

#include "fakes/memory_database_t.h"

namespace fakes {

/// Fills @p _db with a lamp, a scenario and a thermostat and two users.
///
/// | element | type | functions                                       | alice      | bob   |
/// | e-lamp  | 1    | execute -> i-lamp, dim -> i-dim                 | read-write | read  |
/// | e-night | 8    | execute -> s-night                              | read       | deny  |
/// | e-therm | 17   | thermo/setpoint -> i-set, thermo/id_actual and  | read       | write |
/// |         |      | id_win -> i-win                                 |            |       |
inline void furnish(memory_database_t& _db) {
    const auto text = [](const char* word) { return QString::fromLatin1(word); };
    _db.set_topic(text("installation/0001"));
    _db.add_item(text("i-lamp"), text("0"));
    _db.add_item(text("i-dim"), text("40"));
    _db.add_item(text("i-set"), text("20.5"));
    _db.add_item(text("i-temp"), text("21"));
    _db.add_item(text("i-win"), text("0"));
    _db.add_scenary(text("s-night"), false);
    _db.add_thermostat(text("t-living"), {{text("setpoint"), text("i-set")}}, text("i-temp"),
                       text("i-win"));
    _db.add_element(text("e-lamp"), text("Kitchen lamp"), 1,
                    {{text("execute"), text("i-lamp")}, {text("dim"), text("i-dim")}});
    _db.add_scenario_element(text("e-night"), text("Good night"), text("s-night"));
    _db.add_thermo_element(text("e-therm"), text("Living room"), text("t-living"));
    _db.add_user(text("u-alice"), text("alice"));
    _db.add_user(text("u-bob"), text("bob"));
    _db.grant(text("u-alice"), text("e-lamp"), 3);
    _db.grant(text("u-alice"), text("e-night"), 1);
    _db.grant(text("u-alice"), text("e-therm"), 1);
    _db.grant(text("u-bob"), text("e-lamp"), 1);
    _db.grant(text("u-bob"), text("e-therm"), 2);
}

}  // namespace fakes
