#include "database/persistent/persistent_t.h"

namespace database::persistent {

persistent_t::persistent_t(QObject* _parent)
    : QObject(_parent), notifier(new ps_notifier_t(this)), requests(new ps_requests_t(this)) {}

persistent_t::~persistent_t() = default;

}  // namespace database::persistent
