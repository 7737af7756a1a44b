#include "bench/cases/our_home_t.h"

#include "kit/lamps_home.h"
#include "kit/password_of.h"

namespace bench {

using base::result_t;

our_home_t::our_home_t(int _lamps, int _users)
    : lamps(_lamps), names(kit::numbered_users(_users)) {}

result_t our_home_t::start() {
    const result_t imported = import();
    return imported.is_ok() ? start_again() : imported;
}

result_t our_home_t::import() {
    return host.import(kit::lamps_home(lamps, lamps, names))
               ? result_t()
               : result_t::failed("The installation was not imported: " + host.error());
}

result_t our_home_t::start_again() {
    return host.start(
               {"--limit", "publishes-per-second=0", "--limit", "publish-bytes-per-second=0"})
               ? result_t()
               : result_t::failed("torlan-server did not start: " + host.error());
}

door_t our_home_t::door(const QString& _user) const {
    return {"127.0.0.1", host.port(), _user.toStdString(), kit::password_of(_user).toStdString()};
}

}  // namespace bench
