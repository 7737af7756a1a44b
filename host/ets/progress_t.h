#pragma once

#include <QString>
#include <functional>

namespace ets {

/// Called now and then with what is read and how many bytes of it have been; empty: nobody asks.
using progress_t = std::function<void(const QString& _what, qint64 _bytes)>;

}  // namespace ets
