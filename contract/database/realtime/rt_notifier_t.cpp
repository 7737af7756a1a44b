#include "database/realtime/rt_notifier_t.h"

namespace database::realtime {

rt_notifier_t::rt_notifier_t(QObject* _parent) : QObject(_parent) {}

rt_notifier_t::~rt_notifier_t() = default;

}  // namespace database::realtime
