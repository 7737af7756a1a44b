#pragma once

#include "database/persistent/objects/ps_object_thermo_base_t.h"

namespace database::persistent::objects {

/// A thermostat logic. A value type.
class ps_object_thermostat_t {
 public:
    ps_object_thermostat_t(ps_object_thermo_base_t _thermo, QString _id_windows_contact)
        : thermo(std::move(_thermo)), id_windows_contact(std::move(_id_windows_contact)) {}

    /// The thermostat's items; lives as long as this object.
    const ps_object_thermo_base_t* getThermo() const { return &thermo; }
    /// Item id of the window contact; may be empty.
    QString getIdWindowsContact() const { return id_windows_contact; }

 private:
    ps_object_thermo_base_t thermo;
    QString id_windows_contact;
};

}  // namespace database::persistent::objects
