#pragma once

#include <QString>

namespace bench {

/// Tells the person at the terminal what is measured now, with the time since the first.
void tell(const QString& _what);

}  // namespace bench
