#pragma once

#include <QList>
#include <QMultiHash>
#include <QString>

namespace ets {

/// A communication object of a device in a project, as far as it is linked to addresses.
struct com_object_t {
    QString device;    ///< "DI-4"
    QString hardware;  ///< which program the device has: "M-0083_H-19-1_HP-0013-11-A9D6"
    QString ref;       ///< what it is in that program: "O-40_R-1433", also behind the program's id
    QString dpt;       ///< its own type; empty: the program's
};

/// Which objects are linked to which address.
struct links_t {
    QList<com_object_t> objects;
    QHash<quint16, QList<qsizetype>> of_address;  ///< raw address -> places in objects, in order
};

}  // namespace ets
