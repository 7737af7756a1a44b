#include "live/bulk_pacer_t.h"

namespace database::live {

bulk_pacer_t::bulk_pacer_t(std::chrono::milliseconds _gap, QObject* _parent)
    : QObject(_parent), gap(_gap), timer(this) {
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, &bulk_pacer_t::tell);
}

bulk_pacer_t::~bulk_pacer_t() = default;

void bulk_pacer_t::ask() {
    if (timer.isActive()) {
        return;
    }
    const std::chrono::milliseconds passed(since_due.isValid() ? since_due.elapsed() : gap.count());
    if (passed >= gap) {
        tell();
    } else {
        timer.start(gap - passed);
    }
}

void bulk_pacer_t::tell() {
    since_due.start();
    Q_EMIT due();
}

}  // namespace database::live
