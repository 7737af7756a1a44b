#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace database::persistent::objects {

/// What every element has.
struct ps_element_data_t {
    QString name;                          ///< display name
    int type = -1;                         ///< type code; 8 scenario, 17 thermostat logic
    qint32 flags = 0;                      ///< flags word; negative: top bit set
    QMap<QString, QVariant> function_map;  ///< function name -> item id; invalid: not connected
};

}  // namespace database::persistent::objects
