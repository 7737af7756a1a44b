#include "retained_sweep_t.h"

namespace torlan {

retained_sweep_t::retained_sweep_t(std::chrono::milliseconds _interval, QObject* _parent)
    : QObject(_parent) {
    timer.setSingleShot(true);
    timer.setInterval(_interval);
    connect(&timer, &QTimer::timeout, this, &retained_sweep_t::due);
}

retained_sweep_t::~retained_sweep_t() = default;

void retained_sweep_t::trigger() {
    timer.start();
}

}  // namespace torlan
