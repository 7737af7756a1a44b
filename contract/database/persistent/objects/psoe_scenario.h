#pragma once

#include "database/persistent/objects/ps_object_element_t.h"

namespace database::persistent::objects {

/// An element that stands for a scenario (type code 8).
class psoe_scenario : public ps_object_element_t {
    Q_OBJECT

 public:
    psoe_scenario(ps_element_data_t _data, QString _scenario_id, QObject* _parent = nullptr);
    ~psoe_scenario() override;

    QString getScenario_id() const { return scenario_id; }
    std::unique_ptr<ps_object_element_t> clone() const override;

 private:
    const QString scenario_id;
};

}  // namespace database::persistent::objects
