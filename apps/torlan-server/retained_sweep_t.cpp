#include "retained_sweep_t.h"

namespace torlan {

retained_sweep_t::retained_sweep_t(std::chrono::milliseconds _interval, QObject* _parent)
    : QObject(_parent) {
    timer.setSingleShot(true);
    timer.setInterval(_interval);
    latest.setSingleShot(true);
    latest.setInterval(3 * _interval);
    connect(&timer, &QTimer::timeout, this, &retained_sweep_t::tell);
    connect(&latest, &QTimer::timeout, this, &retained_sweep_t::tell);
}

retained_sweep_t::~retained_sweep_t() = default;

void retained_sweep_t::trigger() {
    timer.start();
    if (!latest.isActive()) {
        latest.start();
    }
}

void retained_sweep_t::tell() {
    timer.stop();
    latest.stop();
    Q_EMIT due();
}

}  // namespace torlan
