#include "drivers/plugins/plugin_driver_api/data/data_api_t.h"

namespace interfaces {

data_api_t::data_api_t(QPointer<database::database_t> _database, QObject* _parent)
    : QObject(_parent), name(QStringLiteral("data")), database(_database), view(_database) {}

data_api_t::~data_api_t() = default;

QString data_api_t::getName() const {
    return name;
}

}  // namespace interfaces
