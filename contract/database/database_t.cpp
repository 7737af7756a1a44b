#include "database/database_t.h"

namespace database {

database_t::database_t(QObject* _parent)
    : QObject(_parent),
      persistent_side(new persistent::persistent_t(this)),
      realtime_side(new realtime::realtime_t(this)) {}

database_t::~database_t() = default;

}  // namespace database
