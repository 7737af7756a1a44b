#include "database/realtime/realtime_t.h"

namespace database::realtime {

realtime_t::realtime_t(QObject* _parent) : QObject(_parent), notifier(new rt_notifier_t(this)) {}

realtime_t::~realtime_t() = default;

}  // namespace database::realtime
