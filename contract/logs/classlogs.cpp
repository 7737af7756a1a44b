#include "logs/classlogs.h"

#include <atomic>

namespace utility::logs {

namespace {
std::atomic<classlogs*> installed{nullptr};
}

classlogs::~classlogs() = default;

classlogs* classlogs::getInstance() {
    return installed.load(std::memory_order_acquire);
}

void classlogs::setInstance(classlogs* _logger) {
    installed.store(_logger, std::memory_order_release);
}

}  // namespace utility::logs
