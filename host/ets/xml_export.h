#pragma once

#include <QByteArray>

#include "base/result_t.h"
#include "ets/progress_t.h"
#include "ets/project_t.h"

namespace ets {

/// Reads the XML file of group addresses that ETS exports. Does not name the file in a failure's
/// sentence.
base::result_of_t<project_t> read_xml_export(const QByteArray& _bytes, const progress_t& _progress);

}  // namespace ets
