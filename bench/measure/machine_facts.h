#pragma once

#include <QJsonObject>

namespace bench {

/// What the figures depend on, without anything that names the machine: processor, cores, memory,
/// system, versions, how busy it was.
QJsonObject machine_facts();

}  // namespace bench
