#pragma once

#include <QObject>
#include <memory>

#include "database/persistent/objects/ps_element_data_t.h"

namespace database::persistent::objects {

/// One element of the installation. Immutable; a change replaces the object in its table.
class ps_object_element_t : public QObject {
    Q_OBJECT

 public:
    explicit ps_object_element_t(ps_element_data_t _data, QObject* _parent = nullptr);
    ~ps_object_element_t() override;

    QString getName() const { return data.name; }
    qint32 getFlags() const { return data.flags; }
    QMap<QString, QVariant> getFunction_map() const { return data.function_map; }
    /// The type code; 8 is a scenario, 17 a thermostat logic.
    int getType() const { return data.type; }

    /// A copy of the same class, without parent.
    virtual std::unique_ptr<ps_object_element_t> clone() const;

 protected:
    const ps_element_data_t data;
};

}  // namespace database::persistent::objects
