#include "drivers/driver/capability/plugin_driver_IComunication.h"

namespace interfaces {

IComunication::IComunication()
    : comunication(nullptr), lifetime(std::make_shared<call_lifetime_t>()) {}

IComunication::~IComunication() {
    end_calls();
}

bool IComunication::init_comunication(comunication::protoserver_t* _comunication) {
    {
        const base::write_locker_t locker(&lock);
        if (_comunication == nullptr) {
            utility::log_line(QStringLiteral("Error to set comunication is nullptr!"), 2,
                              "init_comunication", comunication_source, 39);
            return false;
        }
        comunication.store(_comunication);
    }
    // The lock is not recursive and the call reads the endpoint again.
    return finalize_comunication_initialization();
}

comunication::protoserver_t* IComunication::Comunication() {
    const base::read_locker_t locker(&lock);
    return comunication.load();
}

}  // namespace interfaces
