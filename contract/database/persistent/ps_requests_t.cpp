#include "database/persistent/ps_requests_t.h"

namespace database::persistent {

ps_requests_t::ps_requests_t(QObject* _parent) : QObject(_parent) {}

ps_requests_t::~ps_requests_t() = default;

}  // namespace database::persistent
