#include "database/persistent/ps_notifier_t.h"

namespace database::persistent {

ps_notifier_t::ps_notifier_t(QObject* _parent) : QObject(_parent) {}

ps_notifier_t::~ps_notifier_t() = default;

}  // namespace database::persistent
