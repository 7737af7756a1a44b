#pragma once

#include "base/result_t.h"
#include "installation/installation_t.h"

namespace torlan {

/// The installation in the data folder; one that is missing is an error, and is not made.
base::result_of_t<database::installation::installation_t> stored_home(const QString& _data);

}  // namespace torlan
