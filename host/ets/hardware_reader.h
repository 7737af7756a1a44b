#pragma once

#include <QHash>
#include <QIODevice>

#include "base/result_t.h"

namespace ets {

/// Reads a manufacturer's Hardware.xml: which program belongs to which hardware, as projects name
/// it
/// -> as programs are named. Adds to @p _programs.
base::result_t read_hardware(QIODevice* _file, const QString& _name,
                             QHash<QString, QString>* _programs);

}  // namespace ets
