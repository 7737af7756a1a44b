#pragma once

namespace comunication::utility {

/// Whether a subscription is taken up or given up.
enum class subscribe_t { unsubscribe = 0, subscribe = 1 };

}  // namespace comunication::utility
