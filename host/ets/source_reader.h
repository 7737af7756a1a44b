#pragma once

#include <QByteArray>

#include "base/result_t.h"
#include "ets/project_reader.h"

namespace ets {

/// Reads what ETS writes, whatever it is called: a project, or group addresses exported as a table
/// or as XML. @p _name stands in front of the error: "home.knxproj: The zip is damaged ...".
base::result_of_t<project_t> read_source(const QByteArray& _bytes, const QString& _name,
                                         const reading_t& _how);

}  // namespace ets
