#include "endpoint/drivers_turn_t.h"

namespace comunication {

namespace {

/// Until an answer is posted: the driver's answer and its relay, so that these cost the thread no
/// turn of its loop that it would not take anyway.
constexpr int hops_of_a_read = 2;
/// A write takes a few more until the new state is posted: the bus, the element, its collection,
/// the handler.
constexpr int hops = 8;

}  // namespace

drivers_turn_t::drivers_turn_t(QObject* _parent) : QObject(_parent) {}

drivers_turn_t::~drivers_turn_t() = default;

void drivers_turn_t::begin() {
    add(hops);
}

void drivers_turn_t::begin_read() {
    add(hops_of_a_read);
}

void drivers_turn_t::add(int _hops) {
    ended.push_back(false);
    hop(oldest + ended.size() - 1, _hops);
}

void drivers_turn_t::hop(quint64 _turn, int _left) {
    if (_left == 0) {
        end(_turn);
        return;
    }
    QMetaObject::invokeMethod(
        this, [this, _turn, _left]() { hop(_turn, _left - 1); }, Qt::QueuedConnection);
}

void drivers_turn_t::end(quint64 _turn) {
    ended[std::size_t(_turn - oldest)] = true;
    while (!ended.empty() && ended.front()) {
        ended.pop_front();
        ++oldest;
        Q_EMIT over();
    }
}

}  // namespace comunication
