#include "endpoint/drivers_turn_t.h"

namespace comunication {

namespace {

/// A read takes two until its answer is posted: the driver's answer and its relay. A write takes a
/// few more until the new state is posted: the bus, the element, its collection, the handler.
constexpr int hops = 8;

}  // namespace

drivers_turn_t::drivers_turn_t(QObject* _parent) : QObject(_parent) {}

drivers_turn_t::~drivers_turn_t() = default;

void drivers_turn_t::begin() {
    hop(hops);
}

void drivers_turn_t::hop(int _left) {
    if (_left == 0) {
        Q_EMIT over();
        return;
    }
    QMetaObject::invokeMethod(
        this, [this, _left]() { hop(_left - 1); }, Qt::QueuedConnection);
}

}  // namespace comunication
