#pragma once

#include "database/persistent/objects/ps_object_element_t.h"

namespace database::persistent::objects {

/// An element that stands for a thermostat logic (type code 17).
class psoe_thermo_logic : public ps_object_element_t {
    Q_OBJECT

 public:
    psoe_thermo_logic(ps_element_data_t _data, QString _thermo_id, QObject* _parent = nullptr);
    ~psoe_thermo_logic() override;

    QString getThermoId() const { return thermo_id; }
    std::unique_ptr<ps_object_element_t> clone() const override;

 private:
    const QString thermo_id;
};

}  // namespace database::persistent::objects
