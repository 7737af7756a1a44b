#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace database::persistent::objects {

/// The items of a thermostat. A value type.
class ps_object_thermo_base_t {
 public:
    ps_object_thermo_base_t(QMap<QString, QVariant> _ids, QString _id_actual)
        : ids(std::move(_ids)), id_actual(std::move(_id_actual)) {}

    /// Thermostat key (e.g. "setpoint") -> item id.
    QMap<QString, QVariant> getIds() const { return ids; }
    /// Item id of the measured temperature.
    QString getIdActual() const { return id_actual; }

 private:
    QMap<QString, QVariant> ids;
    QString id_actual;
};

}  // namespace database::persistent::objects
