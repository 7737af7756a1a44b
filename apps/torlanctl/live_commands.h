#pragma once

#include <QStringList>

#include "base/result_t.h"

/// What the server that runs on the data folder tells of itself.
namespace torlan {

/// status [--json]
base::result_t check_status_call(const QStringList& _arguments);
base::result_t show_status(const QString& _data, const QStringList& _arguments);

/// bus [--follow] [--json]
base::result_t check_bus_call(const QStringList& _arguments);
base::result_t show_bus(const QString& _data, const QStringList& _arguments);

}  // namespace torlan
