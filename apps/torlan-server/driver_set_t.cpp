#include "driver_set_t.h"

#include <QDir>
#include <utility>

#include "comunication/protoserver_t.h"
#include "loader/driver_loader_t.h"
#include "logs/log_line.h"

namespace torlan {

namespace {
constexpr const char* source = "apps/torlan-server/driver_set_t";
}  // namespace

driver_set_t::driver_set_t(QObject* _parent) : QObject(_parent) {}

driver_set_t::~driver_set_t() = default;

base::result_t driver_set_t::load(const QString& _folder) {
    loader::driver_loader_t loader(_folder);
    drivers = loader.load_all();
    for (const loader::refused_file_t& refused : loader.refused()) {
        utility::log_line(refused.text, 2, "load", source, __LINE__);
    }
    for (const loader::loaded_driver_t& driver : drivers) {
        utility::log_line(QStringLiteral("Loaded driver %1 from %2")
                              .arg(driver.get_metadata().class_name, driver.get_file()),
                          4, "load", source, __LINE__);
    }
    if (!drivers.empty()) {
        return {};
    }
    return base::result_t::failed(loader.refused().isEmpty()
                                      ? QStringLiteral("There is no driver in %1.").arg(_folder)
                                      : QStringLiteral("No driver in %1 can be loaded: %2")
                                            .arg(_folder, loader.refused().constFirst().text));
}

base::result_t driver_set_t::init(database::database_t* _database,
                                  comunication::protoserver_t* _endpoint, bus::bus_port_t* _bus) {
    std::vector<loader::loaded_driver_t> taken;
    QString refused;
    for (loader::loaded_driver_t& driver : drivers) {
        if (driver.init(_database, _endpoint, _bus)) {
            taken.push_back(std::move(driver));
            continue;
        }
        refused = QStringLiteral("The driver %1 could not be initialised.").arg(driver.get_file());
        utility::log_line(refused, 2, "init", source, __LINE__);
    }
    drivers.swap(taken);
    return drivers.empty() ? base::result_t::failed(refused) : base::result_t();
}

void driver_set_t::start_or_stop(bool _start) const {
    for (const loader::loaded_driver_t& driver : drivers) {
        driver.get_driver()->start(_start);
    }
}

void driver_set_t::start() {
    started = true;
    start_or_stop(true);
}

void driver_set_t::stop() {
    if (std::exchange(started, false)) {
        start_or_stop(false);
    }
}

}  // namespace torlan
